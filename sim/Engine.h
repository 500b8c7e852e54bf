#pragma once

#include "sim/Clock.h"
#include "sim/State.h"
#include "sim/Update.h"

#include <Poco/JSON/Object.h>

#include <mutex>
#include <string>
#include <vector>

namespace sim {

/// The engine's behavior, without any network: a request object in, a reply object out. Many
/// threads may call it at once.
///
///   Engine.cpp            which command is which, and those on the engine itself
///   ModuleCommands.cpp    the commands on one service or module
class Engine
{
public:
    explicit Engine(State initial, Clock clock = std::chrono::steady_clock::now);

    /// Carries out the request. One that cannot be carried out changes nothing, and its reply has
    /// a "resultCode" other than 0 and a "description" that says why.
    Poco::JSON::Object Answer(const Poco::JSON::Object& request);

    /// Takes a service or module to a state at once; false if there is none of that name.
    bool SetState(const std::string& moduleName, const std::string& moduleState);
    void SetDebugMode(bool enabled);
    void SetSafeMode(bool enabled);

    static std::vector<std::string> CommandNames();
    /// The command of a request, or "" if that is missing or no string.
    static std::string CommandOf(const Poco::JSON::Object& request);

private:
    struct Command
    {
        const char* name;
        Poco::JSON::Object (Engine::*run)(const Poco::JSON::Object& request);
    };

    struct ModuleCommand
    {
        const char* name;
        bool needsDebugMode;
        Poco::JSON::Object (Engine::*run)(Module& module);
    };

    // Engine.cpp
    static const Command commands[];
    Poco::JSON::Object Debug(const Poco::JSON::Object& request);
    Poco::JSON::Object StartUpdate(const Poco::JSON::Object& request);
    Poco::JSON::Object UpdateStatus(const Poco::JSON::Object& request);
    Poco::JSON::Object EngineStatus(const Poco::JSON::Object& request);
    Poco::JSON::Object List(const Poco::JSON::Object& request);

    // ModuleCommands.cpp
    static const ModuleCommand moduleCommands[];
    static std::vector<std::string> ModuleCommandNames();
    static const ModuleCommand* FindModuleCommand(const std::string& name);
    Poco::JSON::Object RunModuleCommand(const ModuleCommand& command,
                                        const std::string& moduleName);
    Module* FindModule(const std::string& name);
    /// Ends the transitions whose time has come.
    void Settle();
    /// Takes a module to a state that it stays in.
    void Rest(Module& module, const std::string& moduleState);
    struct Change;
    /// Begins what a command does to a module, and ends it if it takes no time.
    Poco::JSON::Object Begin(Module& module, const Change& change);
    Poco::JSON::Object Start(Module& module);
    Poco::JSON::Object Stop(Module& module);
    Poco::JSON::Object Restart(Module& module);
    Poco::JSON::Object Reconfigure(Module& module);
    Poco::JSON::Object Monitor(Module& module);
    Poco::JSON::Object Status(Module& module);
    Poco::JSON::Object Pid(Module& module);

    std::mutex mutex; // held by Answer for the whole of a request
    State state;
    Clock now;
    Update update;
    int lastPid = 1000;
};

} // namespace sim
