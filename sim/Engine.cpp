#include "sim/Engine.h"

#include "sim/Reply.h"

#include <Poco/JSON/Array.h>
#include <Poco/String.h>

#include <utility>

namespace sim {

namespace {

std::string OnOrOff(bool enabled)
{
    return enabled ? "enabled" : "disabled";
}

/// The member as a string, or "" if it is missing or of another type.
std::string TextMember(const Poco::JSON::Object& request, const std::string& key)
{
    const Poco::Dynamic::Var member = request.get(key);
    return member.isString() ? member.extract<std::string>() : std::string();
}

Poco::JSON::Array::Ptr ListEntries(const std::vector<Module>& modules)
{
    Poco::JSON::Array::Ptr entries = new Poco::JSON::Array;
    for (const Module& module : modules) {
        Poco::JSON::Object::Ptr entry = new Poco::JSON::Object;
        entry->set("name", module.name);
        entry->set("state", module.state);
        entry->set("version", module.version);
        if (module.monitored) {
            entry->set("monitored", *module.monitored);
        }
        entries->add(entry);
    }
    return entries;
}

} // namespace

const Engine::Command Engine::commands[] = {
    {"debug", &Engine::Debug},
    {"update", &Engine::StartUpdate},
    {"update-status", &Engine::UpdateStatus},
    {"engine-status", &Engine::EngineStatus},
    {"list", &Engine::List},
};

Engine::Engine(State initial, Clock clock) : state(std::move(initial)), now(std::move(clock))
{
    for (auto* modules : {&state.services, &state.modules}) {
        for (Module& module : *modules) {
            if (HasProcess(module.state)) {
                module.pid = ++lastPid;
            }
        }
    }
}

Poco::JSON::Object Engine::Answer(const Poco::JSON::Object& request)
{
    const std::lock_guard<std::mutex> lock(mutex);
    Settle();
    if (!request.has("command")) {
        return MakeReply(ResultCode::BadRequest, "The request has no \"command\"");
    }
    const std::string name = CommandOf(request);
    if (name.empty()) {
        return MakeReply(ResultCode::BadRequest, "\"command\" is not the name of a command");
    }
    for (const Command& command : commands) {
        if (name == command.name) {
            return (this->*command.run)(request);
        }
    }
    if (const ModuleCommand* command = FindModuleCommand(name)) {
        return RunModuleCommand(*command, TextMember(request, "module"));
    }
    return MakeReply(ResultCode::UnknownCommand, "Unknown command \"" + name + "\"");
}

bool Engine::SetState(const std::string& moduleName, const std::string& moduleState)
{
    const std::lock_guard<std::mutex> lock(mutex);
    Module* const module = FindModule(moduleName);
    if (module != nullptr) {
        Rest(*module, moduleState);
    }
    return module != nullptr;
}

void Engine::SetDebugMode(bool enabled)
{
    const std::lock_guard<std::mutex> lock(mutex);
    state.debugModeEnabled = enabled;
}

void Engine::SetSafeMode(bool enabled)
{
    const std::lock_guard<std::mutex> lock(mutex);
    state.safeModeEnabled = enabled;
}

std::vector<std::string> Engine::CommandNames()
{
    std::vector<std::string> names = ModuleCommandNames();
    for (const Command& command : commands) {
        names.emplace_back(command.name);
    }
    return names;
}

std::string Engine::CommandOf(const Poco::JSON::Object& request)
{
    return TextMember(request, "command");
}

Poco::JSON::Object Engine::Debug(const Poco::JSON::Object& request)
{
    const std::string choice = Poco::toLower(TextMember(request, "boolean"));
    if (choice != "true" && choice != "false") {
        return MakeReply(ResultCode::BadRequest,
                         R"("boolean" is not the string "true" or "false")");
    }
    state.debugModeEnabled = choice == "true";
    return MakeReply(ResultCode::Success, "Debug mode is " + OnOrOff(state.debugModeEnabled));
}

Poco::JSON::Object Engine::StartUpdate(const Poco::JSON::Object& /*request*/)
{
    if (update.IsRunning(now())) {
        return MakeReply(ResultCode::WrongState, "An update is already in progress");
    }
    update.Start(now(), state.modules.size());
    return MakeReply(ResultCode::Success, "Update started");
}

Poco::JSON::Object Engine::UpdateStatus(const Poco::JSON::Object& /*request*/)
{
    return MakeReply(ResultCode::Success, update.Describe(now()));
}

Poco::JSON::Object Engine::EngineStatus(const Poco::JSON::Object& /*request*/)
{
    const bool updating = update.IsRunning(now());
    Poco::JSON::Object reply = MakeReply(ResultCode::Success, "Status of the engine");
    reply.set("safeModeEnabled", state.safeModeEnabled);
    reply.set("debugModeEnabled", state.debugModeEnabled);
    reply.set("state", updating ? std::string("updating") : state.engineState);
    reply.set("version", state.version);
    if (state.build) {
        reply.set("build", *state.build);
    }
    return reply;
}

// NOLINTNEXTLINE(readability-make-member-function-const): one type for all in the table
Poco::JSON::Object Engine::List(const Poco::JSON::Object& /*request*/)
{
    Poco::JSON::Object reply = MakeReply(ResultCode::Success, "Services and modules");
    reply.set("services", ListEntries(state.services));
    reply.set("modules", ListEntries(state.modules));
    return reply;
}

} // namespace sim
