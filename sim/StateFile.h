#pragma once

#include "sim/State.h"

#include <string>

namespace sim {

/// Reads a state in the form of default-state.json. The origin names it in errors. Throws
/// StartError with EXIT_DATAERR for invalid JSON and for a member that is missing, of the wrong
/// type or unknown.
State ReadState(const std::string& json, const std::string& origin);

/// Reads a state from a file. Throws like ReadState, also for a file of more than 1 MiB, and
/// StartError with EXIT_NOINPUT for a file that cannot be read.
State LoadState(const std::string& path);

/// The state of a simulator that is given no file.
State DefaultState();

} // namespace sim
