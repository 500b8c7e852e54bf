# add_build_info(<target> DEPENDS <what>...)
#
# Adds a static library with the build-time texts that app/BuildInfo.h declares. They are written
# anew, with the time of the build, when something of DEPENDS or the checked-out revision has
# changed: WriteBuildInfo.cmake names the files of git that tell, so that a commit needs no
# re-configure and an unchanged tree has no work to do.

set(QUORLAN_REVISION "" CACHE STRING "Source revision shown by --version; empty: ask git")
set(QUORLAN_BRANCH "" CACHE STRING "Source branch shown by --version; empty: ask git")
set(QUORLAN_BUILD_HOST "" CACHE STRING "Build machine shown by --version; empty: this machine")

set(write_build_info "${CMAKE_CURRENT_LIST_DIR}/WriteBuildInfo.cmake")

function(add_build_info target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "DEPENDS")
  set(source "${CMAKE_CURRENT_BINARY_DIR}/BuildInfo.cpp")
  add_custom_command(
    OUTPUT "${source}"
    COMMAND
      "${CMAKE_COMMAND}" "-DOUTPUT=${source}" "-DSOURCE_DIR=${PROJECT_SOURCE_DIR}"
      "-DRELEASE=${PROJECT_VERSION}" "-DBUILD_TYPE=${CMAKE_BUILD_TYPE}"
      "-DREVISION=${QUORLAN_REVISION}" "-DBRANCH=${QUORLAN_BRANCH}" "-DHOST=${QUORLAN_BUILD_HOST}"
      -P "${write_build_info}"
    DEPENDS ${arg_DEPENDS} "${write_build_info}"
    DEPFILE "${source}.d"
    COMMENT "Stamping the build"
    VERBATIM)
  add_library(${target} STATIC "${source}")
endfunction()
