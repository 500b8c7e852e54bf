# Writes all version fields but date and time to OUTPUT, unless they are there already.
#
# Runs in every build. Arguments: OUTPUT, SOURCE_DIR, RELEASE, BUILD_TYPE, REVISION, BRANCH, HOST.
# Where one of the last three is empty, git or the system is asked.

cmake_policy(VERSION 3.20)

set(default_REVISION unknown)
set(default_BRANCH unknown)
set(default_BUILD_TYPE custom)
cmake_host_system_information(RESULT default_HOST QUERY HOSTNAME)
# Asks this repository and no other: not one around an unpacked archive, nor that of a git hook.
execute_process(
  COMMAND git "--git-dir=${SOURCE_DIR}/.git" rev-parse HEAD --abbrev-ref HEAD
  OUTPUT_VARIABLE answer
  OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
if(answer MATCHES "^([0-9a-f]+)\n(.+)$")
  set(default_REVISION "${CMAKE_MATCH_1}")
  set(default_BRANCH "${CMAKE_MATCH_2}")
endif()

# With CMake's type "None", all flags come from who builds.
if(BUILD_TYPE STREQUAL "None")
  set(BUILD_TYPE custom)
endif()

foreach(field IN ITEMS BUILD_TYPE REVISION BRANCH HOST)
  if("${${field}}" STREQUAL "")
    set(${field} "${default_${field}}")
  endif()
  string(REGEX REPLACE "[ \t\r\n]+" "-" ${field} "${${field}}") # fields are separated by spaces
endforeach()
string(SUBSTRING "${REVISION}" 0 7 REVISION)
string(TOLOWER "${REVISION}" REVISION)
string(TOLOWER "${BUILD_TYPE}" BUILD_TYPE)

file(CONFIGURE OUTPUT "${OUTPUT}" @ONLY
     CONTENT "@RELEASE@+@REVISION@ git:@BRANCH@ @BUILD_TYPE@ host:@HOST@")
