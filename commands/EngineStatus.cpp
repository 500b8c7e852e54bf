// The engine's status: the report for people, and the debug-mode flag for the gated commands.

#include "app/Quorlan.h"
#include "engine/Request.h"
#include "term/Field.h"
#include "term/Styles.h"

#include <Poco/Dynamic/Var.h>

#include <iostream>
#include <string_view>

namespace {

constexpr std::size_t fieldWidth = 15;

Field Column(std::string_view text)
{
    return {text, fieldWidth};
}

// A label is written before its value is read: the place where a report stops shows which value
// is missing.
void PrintFlag(std::string_view label, const Poco::JSON::Object::Ptr& reply, const char* key,
               Manipulator colorIfEnabled)
{
    std::cout << Column(label);
    if (reply->getValue<bool>(key)) {
        std::cout << colorIfEnabled << Column("enabled");
    } else {
        std::cout << Green << Column("disabled");
    }
    std::cout << Reset << std::endl;
}

void PrintStatus(const Poco::JSON::Object::Ptr& reply)
{
    std::cout << Bold << "Vantrel status" << Reset << std::endl;
    std::cout << std::string(30, '-') << std::endl;

    // Yellow, not red: debug mode is somebody's choice, safe mode a fault.
    PrintFlag("Safe mode: ", reply, "safeModeEnabled", Red);
    PrintFlag("Debug mode: ", reply, "debugModeEnabled", Yellow);

    std::cout << Column("State: ");
    const auto state = reply->getValue<std::string>("state");
    std::cout << Blue << Column(state) << Reset << std::endl;

    std::cout << Column("Version: ");
    std::cout << Column(reply->getValue<std::string>("version")) << std::endl;

    const Poco::Dynamic::Var build = reply->get("build");
    std::cout << Column("Build info: ");
    std::cout << Column(build.isEmpty() ? "<not available>" : build.convert<std::string>())
              << std::endl;
    std::cout << std::endl;
}

} // namespace

void Quorlan::HandleEngineStatusCommand(const std::string& name, const std::string& /*value*/)
{
    ExecuteRequest(MakeRequest(name), PrintStatus);
}

bool Quorlan::IsDebugModeEnabled()
{
    // The result of SendRequest is ignored on purpose: an unreachable engine leaves an empty reply,
    // which is then reported as unreadable. The "resultCode" does not matter here either.
    std::string reply;
    SendRequest(MakeRequest("engine-status"), reply);
    bool enabled = false;
    ReadReply(reply, [&enabled](const Poco::JSON::Object::Ptr& status) {
        enabled = status->getValue<bool>("debugModeEnabled");
    });
    return enabled;
}
