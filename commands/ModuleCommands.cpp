// The commands that the engine answers with one sentence, and the gate before those that change
// a module's life cycle.

#include "app/Quorlan.h"
#include "engine/Request.h"

#include <algorithm>
#include <iostream>
#include <iterator>
#include <string_view>

namespace {

constexpr std::string_view debugGatedCommands[] = {"start", "stop", "restart", "monitor",
                                                   "reconfigure"};

bool NeedsDebugMode(const std::string& command)
{
    return std::find(std::begin(debugGatedCommands), std::end(debugGatedCommands), command) !=
           std::end(debugGatedCommands);
}

void PrintDescription(const Poco::JSON::Object::Ptr& reply)
{
    std::cout << reply->getValue<std::string>("description") << std::endl;
}

} // namespace

void Quorlan::HandleModuleCommand(const std::string& name, const std::string& value)
{
    HandleCommand(name, "module", value);
}

void Quorlan::HandleBooleanCommand(const std::string& name, const std::string& value)
{
    HandleCommand(name, "boolean", value);
}

void Quorlan::HandleSimpleCommand(const std::string& name, const std::string& /*value*/)
{
    HandleCommand(name, "", "");
}

void Quorlan::HandleCommand(const std::string& command, const std::string& key,
                            const std::string& value)
{
    if (NeedsDebugMode(command) && !IsDebugModeEnabled()) {
        std::cout << "Debug mode is disabled, set debugmode first with -d option" << std::endl;
        return;
    }
    ExecuteRequest(MakeRequest(command, key, value), PrintDescription);
}
