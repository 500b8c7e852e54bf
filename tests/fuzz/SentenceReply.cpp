// Replies to the commands that ask nothing else first and answer with one sentence.

#include "tests/fuzz/Oracle.h"
#include "tests/fuzz/Target.h"

namespace {

struct Command
{
    Words words;
    const char* request;
};

const Command commands[] = {
    {{"--status=m1"}, R"({"command":"status","module":"m1"})"},
    {{"-i", "m1"}, R"({"command":"pid","module":"m1"})"},
    {{"--debug=TRUE"}, R"({"boolean":"TRUE","command":"debug"})"},
    {{"--update"}, R"({"command":"update"})"},
    {{"--update-status"}, R"({"command":"update-status"})"},
};

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string reply(data, data + size);
    const Command& command = commands[size % std::size(commands)];
    Words words = command.words;
    words.insert(words.begin(), "quorlan");

    Outcome expected;
    expected.requests = {command.request};
    ReadExpected(reply, ExpectSentence, expected);
    ExpectRun(words, {reply}, expected);
    return 0;
}
