#pragma once

#include "sim/Clock.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace sim {

/// What a command does to a module: how long it takes and in which state the module then rests.
struct Transition
{
    TimePoint::duration duration;
    std::string end;
};

/// A transition on its way.
struct PendingEnd
{
    TimePoint time;
    std::string state;
    bool refusesCommands; ///< Until then, commands that would change the state.
};

/// A service or a module that the engine supervises.
struct Module
{
    std::string name;
    std::string state;
    std::string version;
    std::optional<bool> monitored; ///< Absent where the engine watches no heartbeat at all.
    std::map<std::string, Transition> transitions; ///< By command; for the others, see Engine.
    int pid = 0;                                   ///< 0 for one without a process.
    std::optional<PendingEnd> pending;             ///< Absent while its state is to stay.
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
