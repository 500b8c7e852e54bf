#pragma once

// The version fields, fixed when the program is built; cmake/BuildInfo.cmake defines them.

/// Release number, "+" and the source revision's first seven digits, e.g. "0.1.1+c0ffee1".
extern const char* const versionText;

/// One line of space-separated fields: the version text, branch, build type, host, date, time.
extern const char* const buildInfoText;
