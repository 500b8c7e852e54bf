#include "tests/sim/e2e/Simulator.h"

#include <cstring>

namespace {

const std::string listening = "vantrel-sim: listening on 127.0.0.1:7777\n";

std::vector<std::string> CommandLine(const std::vector<std::string>& arguments,
                                     const std::string& input)
{
    // A test that is killed for hanging must not leave its simulator behind.
    std::vector<std::string> words = {
        "setpriv", "--pdeathsig", "KILL", "sh", "-c", R"(exec "$0" "$@" <)" + input, VANTREL_SIM};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return words;
}

} // namespace

Simulator::Simulator(const std::vector<std::string>& arguments, const std::string& input)
    : process(Spawn(CommandLine(arguments, input), out, err))
{
    out.writer.Close();
    err.writer.Close(); // so that the end of one that does not start is seen
    AwaitLog(listening);
}

Simulator::~Simulator()
{
    if (process != 0) {
        EXPECT_EQ(End().status, 0) << outcome.err;
    }
}

void Simulator::AwaitLog(const std::string& text)
{
    while (outcome.err.find(text) == std::string::npos && ReadInto(err.reader, outcome.err)) {
    }
}

Outcome Simulator::End(int signal)
{
    kill(process, signal); // safe after its end, too: nobody has waited for it yet
    Finish(process, out, err, outcome);
    process = 0;
    return outcome;
}

std::string NameOfSignal(const testing::TestParamInfo<int>& info)
{
    return strsignal(info.param);
}

std::string LogLine(const std::string& request, const std::string& reply)
{
    return "vantrel-sim: " + request + " -> " + reply + "\n";
}

Outcome Served(const std::string& log)
{
    return {0, "", listening + log};
}

Outcome Refused(int status, const std::string& line)
{
    return {status, "", "vantrel-sim: " + line + "\n"};
}

Outcome Done(const std::string& description)
{
    return {0, description + "\n", ""};
}
