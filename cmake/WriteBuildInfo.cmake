# Writes OUTPUT, a C++ source that defines the build-time texts of app/BuildInfo.h, and OUTPUT.d,
# a depfile that names what of git must change for the texts to be written again.
#
# Run as a script at build time. Arguments: OUTPUT, SOURCE_DIR, RELEASE, BUILD_TYPE, and REVISION,
# BRANCH and HOST, which are looked up where they are empty.

cmake_policy(VERSION 3.20)

# A field stands between blanks and inside a C++ string literal, whatever it came from.
function(make_field variable text fallback)
  string(REGEX REPLACE "[ \t\r\n]+" "-" text "${text}")
  string(REPLACE "\\" "/" text "${text}")
  string(REPLACE "\"" "'" text "${text}")
  string(REPLACE "?" "-" text "${text}")
  if(text STREQUAL "")
    set(text "${fallback}")
  endif()
  set(${variable} "${text}" PARENT_SCOPE)
endfunction()

# Asks the repository that SOURCE_DIR is the root of. GIT_DIR and its like, which git sets for
# hooks, would lead to another repository.
function(git variable)
  execute_process(
    COMMAND "${CMAKE_COMMAND}" -E env --unset=GIT_DIR --unset=GIT_WORK_TREE --unset=GIT_INDEX_FILE
            git -C "${SOURCE_DIR}" ${ARGN}
    OUTPUT_VARIABLE output
    OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET
    RESULT_VARIABLE result)
  if(NOT result STREQUAL "0")
    set(output "")
  endif()
  set(${variable} "${output}" PARENT_SCOPE)
endfunction()

# Ninja takes a depfile that names nothing for one that is missing, and would write the texts anew
# at every build.
string(REPLACE " " "\\ " script "${CMAKE_CURRENT_LIST_FILE}")
set(dependencies " ${script}")
git(top rev-parse --show-toplevel)
get_filename_component(source_dir "${SOURCE_DIR}" REALPATH)
# An archive unpacked inside some other repository is not that repository's revision.
if(top STREQUAL source_dir)
  if(REVISION STREQUAL "")
    git(REVISION rev-parse HEAD)
  endif()
  if(BRANCH STREQUAL "")
    git(BRANCH rev-parse --abbrev-ref HEAD)
  endif()

  # A commit writes HEAD or the branch's file; that file may not exist while the branch is packed,
  # but its folder does and changes with it.
  git(git_dir rev-parse --absolute-git-dir)
  git(common_dir rev-parse --git-common-dir)
  get_filename_component(common_dir "${common_dir}" ABSOLUTE BASE_DIR "${SOURCE_DIR}")
  set(git_files "${git_dir}/HEAD")
  git(ref symbolic-ref --quiet HEAD)
  if(NOT ref STREQUAL "")
    set(ref_file "${common_dir}/${ref}")
    while(NOT EXISTS "${ref_file}")
      list(APPEND git_files "${common_dir}/packed-refs")
      get_filename_component(ref_file "${ref_file}" DIRECTORY)
    endwhile()
    list(APPEND git_files "${ref_file}")
  endif()
  foreach(path IN LISTS git_files)
    if(EXISTS "${path}")
      string(REPLACE " " "\\ " path "${path}")
      string(APPEND dependencies " \\\n  ${path}")
    endif()
  endforeach()
endif()
if(HOST STREQUAL "")
  cmake_host_system_information(RESULT HOST QUERY HOSTNAME)
endif()

# A revision is shown by its first seven digits, however long it was given.
if(REVISION MATCHES "^[0-9a-f]+$")
  string(SUBSTRING "${REVISION}" 0 7 REVISION)
endif()
make_field(revision "${REVISION}" "unknown")
make_field(branch "${BRANCH}" "unknown")
make_field(host "${HOST}" "unknown")
string(TOLOWER "${BUILD_TYPE}" build_type)
make_field(build_type "${build_type}" "none")

# SOURCE_DATE_EPOCH is read by string(TIMESTAMP), which stops the build at one that is no number.
set(utc "")
if("$ENV{SOURCE_DATE_EPOCH}" MATCHES "^[0-9]+$")
  set(utc UTC)
elseif(DEFINED ENV{SOURCE_DATE_EPOCH})
  if(NOT "$ENV{SOURCE_DATE_EPOCH}" STREQUAL "")
    message(WARNING "SOURCE_DATE_EPOCH is not a number of seconds and is ignored")
  endif()
  unset(ENV{SOURCE_DATE_EPOCH})
endif()
string(TIMESTAMP date_and_time "%b %d %Y %H:%M:%S" ${utc})

set(version "${RELEASE}+${revision}")
file(WRITE "${OUTPUT}" "#include \"app/BuildInfo.h\"

const char* const versionText = \"${version}\";
const char* const buildInfoText =
    \"${version} git:${branch} ${build_type} host:${host} ${date_and_time}\";
")
string(REPLACE " " "\\ " target "${OUTPUT}")
file(WRITE "${OUTPUT}.d" "${target}:${dependencies}\n")
