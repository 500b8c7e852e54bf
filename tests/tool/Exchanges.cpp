#include "tests/tool/Exchanges.h"

#include "tests/support/ScriptedEngine.h"
#include "tests/tool/Texts.h"

#include <algorithm>
#include <ostream>

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

/// "update-status" as a part of a test's name.
std::string Letters(const std::string& command)
{
    std::string name;
    for (const char c : command) {
        name += c == '-' ? "" : std::string(1, c);
    }
    return name;
}

std::string Request(const std::string& command, const std::string& key, const std::string& value)
{
    const std::string name = R"("command":")" + command + "\"";
    if (key.empty()) {
        return "{" + name + "}";
    }
    const std::string argument = "\"" + key + R"(":")" + value + "\"";
    return "{" + (key < "command" ? argument + "," + name : name + "," + argument) + "}";
}

Exchange Once(const std::string& command, const std::string& key, const std::string& value,
              const char* reply, const std::string& report)
{
    std::vector<std::string> commandLine{"--" + command};
    if (!key.empty()) {
        commandLine.push_back(value);
    }
    return {Letters(command), commandLine, {Request(command, key, value)},
            {reply},          0,           {0, report, ""}};
}

Exchange Gated(const std::string& command, const std::string& where, std::size_t faulty)
{
    return {command + where,
            {"--" + command, "abc"},
            {engineStatusRequest, Request(command, "module", "abc")},
            {inDebugMode, sentence},
            faulty,
            {0, "done\n", ""}};
}

std::vector<Exchange> MakeExchanges()
{
    std::vector<Exchange> exchanges{
        Once("update", "", "", sentence, "done\n"),
        Once("update-status", "", "", sentence, "done\n"),
        Once("debug", "boolean", "true", sentence, "done\n"),
        Once("status", "module", "abc", sentence, "done\n"),
        Once("pid", "module", "abc", sentence, "done\n"),
        Once("engine-status", "", "", ordinaryStatus, ordinaryStatusReport),
        Once("list", "", "", list, listReport),
    };
    for (const char* const command : {"start", "stop", "restart", "reconfigure", "monitor"}) {
        exchanges.push_back(Gated(command, "AtItsQuery", 0));
        exchanges.push_back(Gated(command, "AtItself", 1));
    }
    return exchanges;
}

} // namespace

std::vector<std::string> Exchange::RequestsUpToFault() const
{
    return {requests.begin(), requests.begin() + static_cast<std::ptrdiff_t>(faulty) + 1};
}

void Exchange::ServeUpToFault(ScriptedEngine& engine) const
{
    for (std::size_t i = 0; i < faulty; ++i) {
        engine.OnConnection(::Reply(replies[i]));
    }
}

void Exchange::ServeAfterFault(ScriptedEngine& engine) const
{
    for (std::size_t i = faulty + 1; i < replies.size(); ++i) {
        engine.OnConnection(::Reply(replies[i]));
    }
}

Outcome Exchange::Refused() const
{
    return IsDebugModeQuery() ? Outcome{76, connectionRefused + debugModeIsOff, emptyReply}
                              : Outcome{69, connectionRefused, ""};
}

Outcome Exchange::Unreadable(const std::string& reason) const
{
    return {76, IsDebugModeQuery() ? debugModeIsOff : "", badReply + reason + "\n"};
}

void PrintTo(const Exchange* exchange, std::ostream* stream)
{
    *stream << exchange->name;
}

const std::vector<const Exchange*>& Exchanges()
{
    static const std::vector<Exchange> exchanges = MakeExchanges();
    static const std::vector<const Exchange*> pointers = [] {
        std::vector<const Exchange*> all(exchanges.size());
        std::transform(exchanges.begin(), exchanges.end(), all.begin(),
                       [](const Exchange& exchange) { return &exchange; });
        return all;
    }();
    return pointers;
}

std::string WithMember(const std::string& reply, const std::string& member)
{
    return "{" + member + "," + reply.substr(1);
}
