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

/// True while a transition that the state file describes is on its way.
bool IsBusy(const Module& module)
{
    return module.pending && module.pending->refusesCommands;
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

std::vector<std::string> Engine::ModuleCommandNames()
{
    std::vector<std::string> names;
    for (const ModuleCommand& command : moduleCommands) {
        names.emplace_back(command.name);
    }
    return names;
}

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

void Engine::Settle()
{
    for (auto* modules : {&state.services, &state.modules}) {
        for (Module& module : *modules) {
            if (module.pending && now() >= module.pending->time) {
                Rest(module, module.pending->state);
            }
        }
    }
}

void Engine::Rest(Module& module, const std::string& moduleState)
{
    module.state = moduleState;
    module.pending.reset();
    if (!HasProcess(moduleState)) {
        module.pid = 0;
    } else if (module.pid == 0) {
        module.pid = ++lastPid;
    }
}

/// What differs between the commands that change the state of a module.
struct Engine::Change
{
    const char* command;
    const char* stateMeanwhile;
    Transition usual;  // where the module has none of its own
    const char* begun; // the reply, after the name of the module, if it takes time
    const char* done;  // the reply if it takes none
    bool makesProcess;
};

Poco::JSON::Object Engine::Begin(Module& module, const Change& change)
{
    const auto own = module.transitions.find(change.command);
    const bool hasOwn = own != module.transitions.end();
    const Transition& transition = hasOwn ? own->second : change.usual;
    if (change.makesProcess) {
        module.pid = ++lastPid;
    }
    if (transition.duration == TimePoint::duration::zero()) {
        Rest(module, transition.end);
        return Done(module.name + change.done);
    }
    module.state = change.stateMeanwhile;
    module.pending = PendingEnd{now() + transition.duration, transition.end, hasOwn};
    return Done(module.name + change.begun);
}

Poco::JSON::Object Engine::Start(Module& module)
{
    if (HasProcess(module.state)) {
        return RefuseInState(module, "cannot be started");
    }
    return Begin(module,
                 {"start", "starting", {{}, "running"}, " is starting", " was started", true});
}

Poco::JSON::Object Engine::Stop(Module& module)
{
    if (!HasProcess(module.state) || IsBusy(module)) {
        return RefuseInState(module, "cannot be stopped");
    }
    return Begin(module,
                 {"stop", "stopping", {{}, "stopped"}, " is stopping", " was stopped", false});
}

Poco::JSON::Object Engine::Restart(Module& module)
{
    if (IsBusy(module)) {
        return RefuseInState(module, "cannot be restarted");
    }
    return Begin(
        module, {"restart", "starting", {{}, "running"}, " is restarting", " was restarted", true});
}

Poco::JSON::Object Engine::Reconfigure(Module& module)
{
    if (!HasProcess(module.state) || IsBusy(module)) {
        return RefuseInState(module, "cannot be reconfigured");
    }
    return Begin(module, {"reconfigure",
                          "reconfiguring",
                          {reconfigureTime, "running"},
                          " is being reconfigured",
                          " was reconfigured",
                          false});
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
