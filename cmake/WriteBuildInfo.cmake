# Writes OUTPUT, a C++ source with the texts of app/BuildInfo.h: the fields that are in the file
# FIELDS, with the date and time of now, or with those of SOURCE_DATE_EPOCH in UTC.

cmake_policy(VERSION 3.20)

# string(TIMESTAMP) stops at a SOURCE_DATE_EPOCH that is not a number.
set(utc "")
if("$ENV{SOURCE_DATE_EPOCH}" MATCHES "^[0-9]+$")
  set(utc UTC)
elseif(DEFINED ENV{SOURCE_DATE_EPOCH})
  message(WARNING "SOURCE_DATE_EPOCH is not a number of seconds and is ignored")
  unset(ENV{SOURCE_DATE_EPOCH})
endif()
string(TIMESTAMP date_and_time "%b %d %Y %H:%M:%S" ${utc})

file(READ "${FIELDS}" fields)
string(REGEX MATCH "^[^ ]+" version "${fields}")
file(WRITE "${OUTPUT}" "#include \"app/BuildInfo.h\"

const char* const versionText = R\"~(${version})~\";
const char* const buildInfoText = R\"~(${fields} ${date_and_time})~\";
")
