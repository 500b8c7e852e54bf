#include "sim/Control.h"

#include "sim/Number.h"
#include "sim/StartError.h"

#include <algorithm>
#include <sstream>

#include <unistd.h>

namespace sim {

namespace {

std::vector<std::string> Split(const std::string& line)
{
    std::istringstream stream(line);
    std::vector<std::string> words;
    for (std::string word; stream >> word;) {
        words.push_back(word);
    }
    return words;
}

std::optional<bool> ParseSwitch(const std::string& word)
{
    if (word != "on" && word != "off") {
        return std::nullopt;
    }
    return word == "on";
}

std::string NotUnderstood(const std::string& line)
{
    return "not understood: \"" + Printable(line) + R"(" ("help" lists the commands))";
}

} // namespace

const Control::Command Control::commands[] = {
    {"state", " NAME STATE", 2, &Control::SetState},
    {"debug", " on|off", 1, &Control::SetDebugMode},
    {"safe-mode", " on|off", 1, &Control::SetSafeMode},
    {"fault", " NAME[:COMMAND][@N]|none", 1, &Control::SetFault},
    {"down", " SECONDS", 1, &Control::Down},
    {"help", "", 0, &Control::Help},
};

Control::Control(Service& service, Server& server) : service(service), server(server) {}

void Control::Read()
{
    char buffer[4096];
    const ssize_t count = read(descriptor, buffer, sizeof buffer);
    if (count > 0) {
        input.append(buffer, static_cast<std::size_t>(count));
    } else {
        descriptor = -1;
        input += '\n'; // for a last line without one
    }
    for (std::size_t end = 0; (end = input.find('\n')) != std::string::npos;) {
        const std::string line = input.substr(0, end);
        input.erase(0, end + 1);
        CarryOut(line);
    }
}

int Control::Patience() const
{
    if (!downEnd) {
        return -1;
    }
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(*downEnd - std::chrono::steady_clock::now());
    return static_cast<int>(std::max<std::chrono::milliseconds::rep>(left.count(), 0));
}

void Control::Continue()
{
    if (downEnd && std::chrono::steady_clock::now() >= *downEnd) {
        downEnd.reset();
        server.Listen();
        server.Accept();
    }
}

void Control::CarryOut(const std::string& line)
{
    const Words words = Split(line);
    if (words.empty()) {
        return;
    }
    const std::string result = RunLine(words);
    service.log.Write("control: " + (result.empty() ? NotUnderstood(line) : result));
}

std::string Control::RunLine(const Words& words)
{
    for (const Command& command : commands) {
        if (words[0] == command.name && words.size() == command.argumentCount + 1) {
            return (this->*command.run)(Words(words.begin() + 1, words.end()));
        }
    }
    return "";
}

std::string Control::SetState(const Words& arguments)
{
    const std::string& module = arguments[0];
    const std::string& state = arguments[1];
    return service.engine.SetState(module, state) ? module + " is " + Printable(state)
                                                  : "unknown module \"" + Printable(module) + "\"";
}

std::string Control::SetDebugMode(const Words& arguments)
{
    const auto enabled = ParseSwitch(arguments[0]);
    if (!enabled) {
        return "";
    }
    service.engine.SetDebugMode(*enabled);
    return "debug mode is " + arguments[0];
}

std::string Control::SetSafeMode(const Words& arguments)
{
    const auto enabled = ParseSwitch(arguments[0]);
    if (!enabled) {
        return "";
    }
    service.engine.SetSafeMode(*enabled);
    return "safe mode is " + arguments[0];
}

std::string Control::SetFault(const Words& arguments)
{
    std::vector<FaultRule> rules;
    try {
        if (arguments[0] != "none") {
            rules.push_back(ParseFaultRule(arguments[0]));
        }
    } catch (const StartError& error) {
        return error.what();
    }
    service.faults.Replace(rules);
    if (!downEnd) {
        server.Accept();
    }
    return rules.empty() ? "no fault" : "fault " + arguments[0];
}

std::string Control::Down(const Words& arguments)
{
    const auto seconds = ParseSeconds(arguments[0]);
    if (!seconds) {
        return "";
    }
    server.Close();
    downEnd = std::chrono::steady_clock::now() +
              std::chrono::ceil<TimePoint::duration>(std::chrono::duration<double>(*seconds));
    return "down for " + arguments[0] + " seconds";
}

// NOLINTNEXTLINE(readability-make-member-function-const): one type for all in the table
std::string Control::Help(const Words& /*arguments*/)
{
    std::string list;
    for (const Command& command : commands) {
        list += std::string(list.empty() ? "" : ", ") + command.name + command.arguments;
    }
    return list;
}

} // namespace sim
