// Both replies to a command that needs debug mode. A line "--" parts the first reply from the
// second; without it the engine is gone when the command itself is sent.

#include "tests/fuzz/Oracle.h"
#include "tests/fuzz/Target.h"

namespace {

const char* const commands[] = {"start", "stop", "restart", "reconfigure", "monitor"};
const std::string separator = "\n--\n";

Replies SplitReplies(const std::string& input)
{
    const std::size_t end = input.find(separator);
    if (end == std::string::npos) {
        return {input};
    }
    return {input.substr(0, end), input.substr(end + separator.size())};
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const Replies replies = SplitReplies(std::string(data, data + size));
    const std::string command = commands[size % std::size(commands)];

    Outcome expected;
    expected.requests = {R"({"command":"engine-status"})"};
    bool enabled = false;
    ReadExpected(
        replies.front(),
        [&enabled](const Poco::JSON::Object& status, Outcome&) {
            enabled = FlagOf(status, "debugModeEnabled");
        },
        expected);
    if (!enabled) {
        expected.out = "Debug mode is disabled, set debugmode first with -d option\n";
    } else {
        expected.requests.push_back(R"({"command":")" + command + R"(","module":"m1"})");
        if (replies.size() == 1) {
            expected.status = 69;
        } else {
            ReadExpected(replies.back(), ExpectSentence, expected);
        }
    }
    ExpectRun({"quorlan", "--" + command, "m1"}, replies, expected);
    return 0;
}
