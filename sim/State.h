#pragma once

#include "sim/Clock.h"

#include <optional>
#include <string>
#include <vector>

namespace sim {

/// A service or a module that the engine supervises.
struct Module
{
    std::string name;
    std::string state;
    std::string version;
    std::optional<bool> monitored; ///< Absent where the engine watches no heartbeat at all.
    int pid = 0;                   ///< 0 for one without a process.
    std::optional<TimePoint> reconfiguredAt; ///< When a reconfiguration by command ends.
};

/// Everything the engine knows when it starts.
struct State
{
    std::string engineState;
    std::string version;
    std::optional<std::string> build;
    bool safeModeEnabled = false;
    bool debugModeEnabled = false;
    std::vector<Module> services;
    std::vector<Module> modules;
};

/// True for what the client accepts as a module: 1 to 16 letters and digits.
bool IsModuleName(const std::string& name);

/// True for the states in which a module has a process, and so a pid.
bool HasProcess(const std::string& moduleState);

} // namespace sim
