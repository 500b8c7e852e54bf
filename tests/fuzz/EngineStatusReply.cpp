// Replies to engine-status.

#include "tests/fuzz/Oracle.h"
#include "tests/fuzz/Target.h"

#include <Poco/Dynamic/Var.h>

namespace {

void ExpectStatus(const Poco::JSON::Object& reply, Outcome& expected)
{
    const auto line = [&expected](const std::string& label, const auto& read) {
        expected.out += Padded(label, 15);
        expected.out += Padded(read(), 15) + "\n";
    };
    const auto flag = [&reply](const char* key) {
        return [&reply, key] {
            return std::string(FlagOf(reply, key) ? "enabled" : "disabled");
        };
    };
    const auto text = [&reply](const char* key) {
        return [&reply, key] {
            return TextOf(reply, key);
        };
    };

    expected.out += "Vantrel status\n------------------------------\n";
    line("Safe mode: ", flag("safeModeEnabled"));
    line("Debug mode: ", flag("debugModeEnabled"));
    line("State: ", text("state"));
    line("Version: ", text("version"));
    line("Build info: ",
         [&reply] { return reply.isNull("build") ? "<not available>" : TextOf(reply, "build"); });
    expected.out += "\n";
    expected.status = CodeOf(reply);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string reply(data, data + size);
    Outcome expected;
    expected.requests = {R"({"command":"engine-status"})"};
    ReadExpected(reply, ExpectStatus, expected);
    ExpectRun({"quorlan", "--engine-status"}, {reply}, expected);
    return 0;
}
