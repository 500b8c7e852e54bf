#pragma once

#include "sim/FaultRules.h"
#include "sim/Log.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace sim {

/// What the user asked for.
struct Settings
{
    std::optional<std::string> stateFile; ///< None: the default set.
    std::vector<FaultRule> faults;
    std::chrono::milliseconds delay{0};
    std::optional<std::string> logFile; ///< None: standard error.
    LogFormat logFormat = LogFormat::Text;
    std::vector<std::string> command; ///< Empty: serve until SIGINT or SIGTERM.
    bool isolated = false;            ///< Both in a network of their own.
    bool control = false;             ///< By commands from standard input.
};

/// Serves, and then ends the process. Throws StartError.
[[noreturn]] void Run(const Settings& settings);

} // namespace sim
