// Strict about what it reads: after a mistake that is silently ignored, the author would wonder why
// the simulator does not behave as written.

#include "sim/StateFile.h"

#include "sim/Log.h"
#include "sim/StartError.h"
#include "sim/StrictObject.h"

#include <Poco/Exception.h>
#include <Poco/JSON/Array.h>
#include <Poco/JSON/Parser.h>
#include <Poco/Util/Application.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <set>

namespace sim {

namespace {

constexpr std::size_t maxStateLength = 1 << 20; // a device file would never end
constexpr int maxSeconds = 86400;

Transition ReadTransition(const StrictObject& object, const std::string& usualEnd)
{
    object.AllowOnly({"seconds", "end"});
    const std::chrono::duration<double> seconds(
        object.Has("seconds") ? object.Number("seconds", maxSeconds) : 0);
    return {std::chrono::duration_cast<TimePoint::duration>(seconds),
            object.Has("end") ? object.Text("end") : usualEnd};
}

Module ReadModule(const StrictObject& object)
{
    object.AllowOnly(
        {"name", "state", "version", "monitored", "start", "stop", "restart", "reconfigure"});
    Module module;
    module.name = object.Text("name");
    if (!IsModuleName(module.name)) {
        object.Fail("\"name\" is not 1 to 16 letters and digits");
    }
    module.state = object.Text("state");
    module.version = object.Text("version");
    if (object.Has("monitored")) {
        module.monitored = object.Flag("monitored");
    }
    for (const char* const command : {"start", "stop", "restart", "reconfigure"}) {
        if (object.Has(command)) {
            const StrictObject transition(object.Member(command), object.PathOf(command));
            module.transitions[command] =
                ReadTransition(transition, command == std::string("stop") ? "stopped" : "running");
        }
    }
    return module;
}

std::vector<Module> ReadModules(const StrictObject& root, const std::string& key)
{
    const Poco::JSON::Array::Ptr array = root.Array(key);
    std::vector<Module> modules;
    for (unsigned int i = 0; i < array->size(); ++i) {
        const StrictObject entry(array->get(i), root.PathOf(key) + "[" + std::to_string(i) + "]");
        modules.push_back(ReadModule(entry));
        if (modules.back().monitored.has_value() != modules.front().monitored.has_value()) {
            entry.Fail(R"("monitored" must be in every entry of ")" + key + "\" or in none");
        }
    }
    return modules;
}

void RefuseSecondUseOfAName(const State& state)
{
    std::set<std::string> names;
    for (const auto* modules : {&state.services, &state.modules}) {
        for (const Module& module : *modules) {
            if (!names.insert(module.name).second) {
                throw StrictObject::Error("the name \"" + module.name + "\" is used twice");
            }
        }
    }
}

State ReadRoot(const Poco::Dynamic::Var& json)
{
    const StrictObject root(json, "");
    root.AllowOnly({"engine", "services", "modules"});
    const StrictObject engine(root.Member("engine"), root.PathOf("engine"));
    engine.AllowOnly({"state", "version", "build", "safeModeEnabled", "debugModeEnabled"});

    State state;
    state.engineState = engine.Text("state");
    state.version = engine.Text("version");
    if (engine.Has("build")) {
        state.build = engine.Text("build");
    }
    state.safeModeEnabled = engine.Flag("safeModeEnabled");
    state.debugModeEnabled = engine.Flag("debugModeEnabled");
    state.services = ReadModules(root, "services");
    state.modules = ReadModules(root, "modules");
    RefuseSecondUseOfAName(state);
    return state;
}

} // namespace

State ReadState(const std::string& json, const std::string& origin)
{
    constexpr int status = Poco::Util::Application::EXIT_DATAERR;
    // POCO's parser knows no root but an object or an array.
    const std::size_t first = json.find_first_not_of(" \t\r\n");
    if (first != std::string::npos && json[first] != '{') {
        throw StartError(status, origin + ": not a JSON object");
    }
    Poco::Dynamic::Var root;
    try {
        root = Poco::JSON::Parser().parse(json);
    } catch (const Poco::Exception& exception) {
        throw StartError(status, origin + ": not valid JSON: " + Printable(exception.message()));
    }
    try {
        return ReadRoot(root);
    } catch (const StrictObject::Error& error) {
        throw StartError(status, origin + ": " + error.what());
    }
}

State LoadState(const std::string& path)
{
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    std::string json(maxStateLength + 1, '\0');
    file.read(json.data(), static_cast<std::streamsize>(json.size()));
    // A directory can be opened but not read, which shows only in errno.
    if (!file.is_open() || errno != 0) {
        throw StartError(Poco::Util::Application::EXIT_NOINPUT,
                         path + ": cannot be read: " + std::strerror(errno));
    }
    json.resize(static_cast<std::size_t>(file.gcount()));
    if (json.size() > maxStateLength) {
        throw StartError(Poco::Util::Application::EXIT_DATAERR, path + ": longer than 1 MiB");
    }
    return ReadState(json, path);
}

} // namespace sim
