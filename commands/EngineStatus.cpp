// The engine's status: the report for people, and the debug-mode flag for the gated commands.

#include "app/Quorlan.h"
#include "engine/Request.h"
#include "term/Field.h"
#include "term/Styles.h"

#include <Poco/Dynamic/Var.h>

#include <iostream>
#include <string_view>

namespace {

constexpr int fieldWidth = 15;

Field Column(std::string_view text)
{
    return {text, fieldWidth};
}

// Each label is written before its value is read, so that a reply without the value shows which
// line it was missing for.
void PrintStatus(const Poco::JSON::Object::Ptr& reply)
{
    std::cout << Bold << "Vantrel status" << Reset << std::endl;
    std::cout << std::string(30, '-') << std::endl;

    std::cout << Column("Safe mode: ");
    if (reply->getValue<bool>("safeModeEnabled")) {
        std::cout << Red << Column("enabled");
    } else {
        std::cout << Green << Column("disabled");
    }
    std::cout << Reset << std::endl;

    // Yellow, not the red of safe mode: debug mode is somebody's choice, safe mode a fault.
    std::cout << Column("Debug mode: ");
    if (reply->getValue<bool>("debugModeEnabled")) {
        std::cout << Yellow << Column("enabled");
    } else {
        std::cout << Green << Column("disabled");
    }
    std::cout << Reset << std::endl;

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
    // Whether the request could be sent is not asked: an unreachable engine leaves an empty reply,
    // which ends as a reply that cannot be read. The "resultCode" has no say in the gate either.
    std::string reply;
    SendRequest(MakeRequest("engine-status"), reply);
    bool enabled = false;
    ReadReply(reply, [&enabled](const Poco::JSON::Object::Ptr& status) {
        enabled = status->getValue<bool>("debugModeEnabled");
    });
    return enabled;
}
