#include "tests/tool/Scenarios.h"

#include "tests/support/ScriptedEngine.h"
#include "tests/support/TestName.h"
#include "tests/tool/Texts.h"

namespace {

const char* const list =
    R"({"resultCode":0,"services":[{"name":"log","state":"running","version":"1"}],)"
    R"("modules":[{"name":"pump","state":"stopped","monitored":true,"version":"2"}]})";
const char* const listReport =
    "SERVICE NAME             STATE          VERSION        \n"
    "-------------------------------------------------------\n"
    "log                      running        1              \n"
    "\n"
    "MODULE NAME              STATE          HEARTBEAT      VERSION        \n"
    "----------------------------------------------------------------------\n"
    "pump                     stopped        yes            2              \n"
    "\n";

const char* const sentence = R"({"description":"done","resultCode":0})";

// All that the query needs: a test tries the reply cut off after each of its bytes.
const char* const inDebugMode = R"({"debugModeEnabled":true})";

Scenario Once(const char* commandLine, const char* request, const char* reply,
              const std::string& report)
{
    const std::vector<std::string> words = Words(commandLine);
    return {TestName(words[0].substr(2)), words, {request}, {reply}, 0, {0, report, ""}};
}

Scenario Gated(const std::string& command, const char* where, std::size_t faulty)
{
    return {command + where,
            {"--" + command, "abc"},
            {engineStatusRequest, R"({"command":")" + command + R"(","module":"abc"})"},
            {inDebugMode, sentence},
            faulty,
            {0, "done\n", ""}};
}

std::vector<Scenario> MakeScenarios()
{
    std::vector<Scenario> scenarios{
        Once("--update", R"({"command":"update"})", sentence, "done\n"),
        Once("--update-status", R"({"command":"update-status"})", sentence, "done\n"),
        Once("--debug true", R"({"boolean":"true","command":"debug"})", sentence, "done\n"),
        Once("--status abc", R"({"command":"status","module":"abc"})", sentence, "done\n"),
        Once("--pid abc", R"({"command":"pid","module":"abc"})", sentence, "done\n"),
        Once("--engine-status", engineStatusRequest, ordinaryStatus, ordinaryStatusReport),
        Once("--list", R"({"command":"list"})", list, listReport),
    };
    for (const char* const command : {"start", "stop", "restart", "reconfigure", "monitor"}) {
        scenarios.push_back(Gated(command, "AtItsQuery", 0));
        scenarios.push_back(Gated(command, "AtItself", 1));
    }
    return scenarios;
}

} // namespace

std::vector<std::string> Scenario::RequestsUpToFault() const
{
    return {requests.begin(), requests.begin() + static_cast<std::ptrdiff_t>(faulty) + 1};
}

void Scenario::ServeUpToFault(ScriptedEngine& engine) const
{
    for (std::size_t i = 0; i < faulty; ++i) {
        engine.OnConnection(::Reply(replies[i]));
    }
}

void Scenario::ServeAfterFault(ScriptedEngine& engine) const
{
    for (std::size_t i = faulty + 1; i < replies.size(); ++i) {
        engine.OnConnection(::Reply(replies[i]));
    }
}

Outcome Scenario::Refused() const
{
    return IsDebugModeQuery() ? Outcome{76, connectionRefused + debugModeIsOff, emptyReply}
                              : Outcome{69, connectionRefused, ""};
}

Outcome Scenario::Unreadable(const std::string& reason) const
{
    return {76, IsDebugModeQuery() ? debugModeIsOff : "", badReply + reason + "\n"};
}

const std::vector<Scenario>& Scenarios()
{
    static const std::vector<Scenario> scenarios = MakeScenarios();
    return scenarios;
}
