#include "sim/FaultRules.h"

#include "sim/Log.h"
#include "sim/Number.h"
#include "sim/StartError.h"

#include <Poco/Util/Application.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace sim {

namespace {

[[noreturn]] void Refuse(const std::string& problem)
{
    throw StartError(Poco::Util::Application::EXIT_USAGE, problem);
}

std::string Quoted(const std::string& text)
{
    return "\"" + (text.empty() ? text : Printable(text)) + "\"";
}

std::uint64_t ParseNumber(const std::string& digits, const std::string& rule)
{
    const auto number = ParseWhole(digits, std::numeric_limits<std::uint64_t>::max());
    if (number.value_or(0) == 0) {
        Refuse("fault " + Quoted(rule) + ": " + Quoted(digits) + " is not a number from 1 on");
    }
    return *number;
}

void RequireCommand(const std::string& command, const std::string& rule)
{
    const std::vector<std::string> commands = Engine::CommandNames();
    if (std::find(commands.begin(), commands.end(), command) == commands.end()) {
        Refuse("fault " + Quoted(rule) + ": unknown command " + Quoted(command));
    }
}

} // namespace

FaultRule ParseFaultRule(const std::string& text)
{
    FaultRule rule;
    const std::size_t at = text.find('@');
    const std::string scope = text.substr(0, at);
    const std::size_t colon = scope.find(':');

    rule.fault = &FindFault(scope.substr(0, colon));
    if (colon != std::string::npos) {
        rule.command = scope.substr(colon + 1);
        RequireCommand(rule.command, text);
    }
    if (at != std::string::npos) {
        rule.number = ParseNumber(text.substr(at + 1), text);
    }
    if (rule.fault->reach == Reach::Queued && !rule.FitsEveryRequest()) {
        Refuse("fault " + Quoted(text) + ": " + rule.fault->name + " is for every connection");
    }
    return rule;
}

FaultRules::FaultRules(std::vector<FaultRule> initial) : rules(std::move(initial)) {}

void FaultRules::Replace(std::vector<FaultRule> newRules)
{
    const std::lock_guard<std::mutex> lock(mutex);
    rules = std::move(newRules);
    requests = 0;
    requestsOfCommand.clear();
}

bool FaultRules::AcceptNobody()
{
    const std::lock_guard<std::mutex> lock(mutex);
    return std::any_of(rules.begin(), rules.end(),
                       [](const FaultRule& rule) { return rule.fault->reach == Reach::Queued; });
}

const Fault* FaultRules::WithoutRequest()
{
    const std::lock_guard<std::mutex> lock(mutex);
    const bool needsNoRequest = !rules.empty() && rules.front().FitsEveryRequest() &&
                                rules.front().fault->reach < Reach::Read;
    return needsNoRequest ? rules.front().fault : nullptr;
}

const Fault& FaultRules::For(const Request& request)
{
    const std::string command = request.object ? Engine::CommandOf(*request.object) : "";
    const std::lock_guard<std::mutex> lock(mutex);
    const bool counts = !request.text.empty();
    const std::uint64_t ofAll = counts ? ++requests : 0;
    const std::uint64_t ofCommand = counts ? ++requestsOfCommand[command] : 0;
    for (const FaultRule& rule : rules) {
        const bool fitsCommand = rule.command.empty() || rule.command == command;
        const std::uint64_t number = rule.command.empty() ? ofAll : ofCommand;
        if (fitsCommand && (rule.number == 0 || rule.number == number)) {
            return *rule.fault;
        }
    }
    return NoFault();
}

} // namespace sim
