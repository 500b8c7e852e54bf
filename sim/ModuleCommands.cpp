// The commands on one service or module. They share the checks of RunModuleCommand; each adds
// only what it needs of the module's own state.

#include "sim/Engine.h"
#include "sim/Reply.h"

#include <algorithm>

namespace sim {

namespace {

constexpr std::chrono::seconds reconfigureTime(2);

Poco::JSON::Object Done(const std::string& sentence)
{
    return MakeReply(ResultCode::Success, sentence);
}

Poco::JSON::Object RefuseInState(const Module& module, const std::string& what)
{
    return MakeReply(ResultCode::WrongState,
                     module.name + " " + what + ": its state is \"" + module.state + "\"");
}

} // namespace

const Engine::ModuleCommand Engine::moduleCommands[] = {
    {"start", true, &Engine::Start},     {"stop", true, &Engine::Stop},
    {"restart", true, &Engine::Restart}, {"reconfigure", true, &Engine::Reconfigure},
    {"monitor", true, &Engine::Monitor}, {"status", false, &Engine::Status},
    {"pid", false, &Engine::Pid},
};

const Engine::ModuleCommand* Engine::FindModuleCommand(const std::string& name)
{
    const auto* found =
        std::find_if(std::begin(moduleCommands), std::end(moduleCommands),
                     [&name](const ModuleCommand& command) { return name == command.name; });
    return found == std::end(moduleCommands) ? nullptr : found;
}

Poco::JSON::Object Engine::RunModuleCommand(const ModuleCommand& command,
                                            const std::string& moduleName)
{
    if (!IsModuleName(moduleName)) {
        return MakeReply(ResultCode::BadRequest, "\"module\" is not 1 to 16 letters and digits");
    }
    if (command.needsDebugMode && !state.debugModeEnabled) {
        return MakeReply(ResultCode::DebugModeDisabled, "Debug mode is disabled");
    }
    Module* const module = FindModule(moduleName);
    if (module == nullptr) {
        return MakeReply(ResultCode::UnknownModule, "Unknown module \"" + moduleName + "\"");
    }
    return (this->*command.run)(*module);
}

Module* Engine::FindModule(const std::string& name)
{
    for (auto* modules : {&state.services, &state.modules}) {
        for (Module& module : *modules) {
            if (module.name == name) {
                return &module;
            }
        }
    }
    return nullptr;
}

void Engine::Launch(Module& module)
{
    module.state = "running";
    module.pid = ++lastPid;
}

void Engine::Settle()
{
    for (auto* modules : {&state.services, &state.modules}) {
        for (Module& module : *modules) {
            if (module.state == "reconfiguring" && module.reconfiguredAt &&
                now() >= *module.reconfiguredAt) {
                module.state = "running";
            }
        }
    }
}

Poco::JSON::Object Engine::Start(Module& module)
{
    if (HasProcess(module.state)) {
        return RefuseInState(module, "cannot be started");
    }
    Launch(module);
    return Done(module.name + " was started");
}

Poco::JSON::Object Engine::Stop(Module& module)
{
    if (!HasProcess(module.state)) {
        return RefuseInState(module, "cannot be stopped");
    }
    module.state = "stopped";
    module.pid = 0;
    return Done(module.name + " was stopped");
}

Poco::JSON::Object Engine::Restart(Module& module)
{
    Launch(module);
    return Done(module.name + " was restarted");
}

Poco::JSON::Object Engine::Reconfigure(Module& module)
{
    if (!HasProcess(module.state)) {
        return RefuseInState(module, "cannot be reconfigured");
    }
    module.state = "reconfiguring";
    module.reconfiguredAt = now() + reconfigureTime;
    return Done(module.name + " is being reconfigured");
}

Poco::JSON::Object Engine::Monitor(Module& module)
{
    if (!module.monitored.value_or(false)) {
        return MakeReply(ResultCode::WrongState,
                         module.name + " is not monitored: there is nothing to stop");
    }
    module.monitored = false;
    return Done("The heartbeat of " + module.name + " is no longer monitored");
}

Poco::JSON::Object Engine::Status(Module& module)
{
    return Done(module.name + " is " + module.state +
                (module.monitored.value_or(true) ? "" : ", not monitored"));
}

Poco::JSON::Object Engine::Pid(Module& module)
{
    if (!HasProcess(module.state)) {
        return RefuseInState(module, "has no process");
    }
    return Done(std::to_string(module.pid)); // the number alone, for scripts
}

} // namespace sim
