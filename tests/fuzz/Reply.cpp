// Replies of the engine. The first byte of an input chooses the command; the rest is the reply.

#include "tests/fuzz/Reports.h"

#include <Poco/Dynamic/Var.h>
#include <Poco/RegularExpression.h>

#include <algorithm>
#include <cstdint>

namespace {

struct Command
{
    char letter; // of its option; update and update-status have none and take U and S
    bool gated;  // sent only if the engine says that debug mode is on
    Arguments arguments;
    std::string request;
    Report report;
};

const Command commands[] = {
    {'u', false, {"--status=m1"}, R"({"command":"status","module":"m1"})", ExpectSentence},
    {'i', false, {"-i", "m1"}, R"({"command":"pid","module":"m1"})", ExpectSentence},
    {'d', false, {"--debug=TRUE"}, R"({"boolean":"TRUE","command":"debug"})", ExpectSentence},
    {'U', false, {"--update"}, R"({"command":"update"})", ExpectSentence},
    {'S', false, {"--update-status"}, R"({"command":"update-status"})", ExpectSentence},
    {'s', true, {"--start", "m1"}, R"({"command":"start","module":"m1"})", ExpectSentence},
    {'p', true, {"--stop", "m1"}, R"({"command":"stop","module":"m1"})", ExpectSentence},
    {'r', true, {"--restart", "m1"}, R"({"command":"restart","module":"m1"})", ExpectSentence},
    {'c', true, {"-c", "m1"}, R"({"command":"reconfigure","module":"m1"})", ExpectSentence},
    {'m', true, {"--monitor", "m1"}, R"({"command":"monitor","module":"m1"})", ExpectSentence},
    {'e', false, {"--engine-status"}, R"({"command":"engine-status"})", ExpectStatus},
    {'l', false, {"--list"}, R"({"command":"list"})", ExpectList},
};

const Command& Chosen(char letter)
{
    const auto* const found =
        std::find_if(std::begin(commands), std::end(commands),
                     [letter](const Command& command) { return command.letter == letter; });
    return found != std::end(commands)
               ? *found
               : commands[static_cast<std::uint8_t>(letter) % std::size(commands)];
}

// A line "--" separates the reply to a gated command's query from the one to the command. Without
// it the engine is gone when the command is sent.
Replies SplitReplies(const std::string& input)
{
    const std::string separator = "\n--\n";
    const std::size_t end = input.find(separator);
    if (end == std::string::npos) {
        return {input};
    }
    return {input.substr(0, end), input.substr(end + separator.size())};
}

bool ExpectDebugMode(const std::string& reply, RunResult& expected)
{
    bool enabled = false;
    expected.requests.emplace_back(R"({"command":"engine-status"})");
    ReadExpected(
        reply,
        [&enabled](const Poco::JSON::Object& status, RunResult&) {
            enabled = status.get("debugModeEnabled").convert<bool>();
        },
        expected);
    return enabled;
}

RunResult Expected(const Command& command, Replies replies)
{
    RunResult expected;
    if (command.gated) {
        if (!ExpectDebugMode(replies.front(), expected)) {
            expected.out = "Debug mode is disabled, set debugmode first with -d option\n";
            return expected;
        }
        replies.pop_front();
    }
    expected.requests.push_back(command.request);
    if (replies.empty()) {
        expected.status = 69;
    } else {
        ReadExpected(replies.front(), command.report, expected);
    }
    return expected;
}

// Only a style that its own reset closes is removed, so any other makes the texts differ.
std::string WithoutStyles(std::string text)
{
    static const Poco::RegularExpression styled("\033\\[(?:1|3[1-4])m([^\033]*)\033\\[00m");
    styled.subst(text, "$1", Poco::RegularExpression::RE_GLOBAL);
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0) {
        return 0;
    }
    const Command& command = Chosen(static_cast<char>(data[0]));
    const std::string rest(data + 1, data + size);
    const Replies replies = command.gated ? SplitReplies(rest) : Replies{rest};
    const RunResult expected = Expected(command, replies);

    Arguments arguments = command.arguments;
    arguments.insert(arguments.begin(), "quorlan");
    RequireSame("run", Run(arguments, replies), expected);

    RunResult onTerminal = RunOnTerminal(arguments, replies);
    // A reply's own escape bytes are printed as they come and can't be told from styles.
    if (expected.out.find('\033') == std::string::npos) {
        onTerminal.out = WithoutStyles(onTerminal.out);
        RequireSame("run on a terminal, without its styles", onTerminal, expected);
    }
    return 0;
}
