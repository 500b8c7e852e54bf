# add_build_info(<target> <input>...)
#
# Adds a static library that defines the version fields, the texts of app/BuildInfo.h. They have the
# date and time of the last build in which another field or an <input> changed: what the program is
# linked from.
#
# Where git archives a commit, it writes the revision and the time into cmake/commit.txt. The branch of
# an archive is main, from which releases are made.

set(build_info_scripts "${CMAKE_CURRENT_LIST_DIR}")

function(add_build_info target)
  set(revision "${QUORLAN_REVISION}")
  set(branch "${QUORLAN_BRANCH}")
  if(EXISTS "${PROJECT_SOURCE_DIR}/cmake/commit.txt")
    file(STRINGS "${PROJECT_SOURCE_DIR}/cmake/commit.txt" commit REGEX "^[0-9a-f]+ [0-9]+$")
    if(commit AND "${revision}" STREQUAL "")
      string(REGEX REPLACE " .*" "" revision "${commit}")
    endif()
    if(commit AND "${branch}" STREQUAL "")
      set(branch main)
    endif()
  endif()

  if(NOT "${revision}" STREQUAL "")
    string(LENGTH "${revision}" digits)
    if(NOT revision MATCHES "^[0-9A-Fa-f]+$" OR digits LESS 7 OR digits GREATER 40)
      message(FATAL_ERROR "QUORLAN_REVISION is \"${revision}\", which is not a revision: "
                          "7 to 40 hexadecimal digits")
    endif()
  else()
    execute_process(
      COMMAND git "--git-dir=${PROJECT_SOURCE_DIR}/.git" rev-parse HEAD
      RESULT_VARIABLE result
      ERROR_VARIABLE reason
      OUTPUT_QUIET)
    if(NOT result EQUAL 0)
      message(WARNING "--version will show an unknown revision: QUORLAN_REVISION is not set, and git "
                      "has none: ${reason}")
    endif()
  endif()

  set(fields "${CMAKE_CURRENT_BINARY_DIR}/version-fields.txt")
  add_custom_target(
    ${target}-fields
    COMMAND
      "${CMAKE_COMMAND}" "-DOUTPUT=${fields}" "-DSOURCE_DIR=${PROJECT_SOURCE_DIR}"
      "-DRELEASE=${PROJECT_VERSION}" "-DREVISION=${revision}" "-DBRANCH=${branch}"
      "-DBUILD_TYPE=$<CONFIG>" "-DHOST=${QUORLAN_BUILD_HOST}" -P
      "${build_info_scripts}/WriteVersionFields.cmake"
    BYPRODUCTS "${fields}"
    COMMENT "Looking up the version fields"
    VERBATIM)

  set(source "${CMAKE_CURRENT_BINARY_DIR}/BuildInfo.cpp")
  set(script "${build_info_scripts}/WriteBuildInfo.cmake")
  add_custom_command(
    OUTPUT "${source}"
    COMMAND "${CMAKE_COMMAND}" "-DOUTPUT=${source}" "-DFIELDS=${fields}" -P "${script}"
    DEPENDS "${fields}" "${script}" ${ARGN}
    COMMENT "Stamping the build"
    VERBATIM)
  add_library(${target} STATIC "${source}")
  add_dependencies(${target} ${target}-fields)
  # Make does not know how to build the objects of another target: that has to come first.
  foreach(input IN LISTS ARGN)
    if(input MATCHES "^\\$<TARGET_OBJECTS:(.*)>$")
      add_dependencies(${target} ${CMAKE_MATCH_1})
    endif()
  endforeach()
endfunction()
