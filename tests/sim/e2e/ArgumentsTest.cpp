#include "sim/Simulator.h"

#include <gtest/gtest.h>

#include <iostream>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

namespace {

/// What a run left behind that ended before it served anyone.
struct Result
{
    int status = 0;
    std::string out;
    std::string err;

    bool operator==(const Result& other) const
    {
        return status == other.status && out == other.out && err == other.err;
    }
};

void PrintTo(const Result& result, std::ostream* stream)
{
    *stream << "status " << result.status << "\n--- standard output\n"
            << result.out << "--- standard error\n"
            << result.err;
}

/// Collects what is written to a standard stream.
class Capture
{
public:
    explicit Capture(std::ostream& captured)
        : stream(captured), original(stream.rdbuf(text.rdbuf()))
    {
    }
    ~Capture() { stream.rdbuf(original); }
    Capture(const Capture&) = delete;
    Capture& operator=(const Capture&) = delete;

    std::string Text() const { return text.str(); }

private:
    std::ostream& stream;
    std::ostringstream text;
    std::streambuf* original;
};

Result Simulate(std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin(), "vantrel-sim");
    std::vector<char*> argv;
    argv.reserve(arguments.size());
    for (std::string& argument : arguments) {
        argv.push_back(argument.data());
    }
    const Capture out(std::cout);
    const Capture err(std::cerr);
    const int status = sim::RunSimulator(static_cast<int>(argv.size()), argv.data());
    return {status, out.Text(), err.Text()};
}

Result Refusal(int status, const std::string& line)
{
    return {status, "", "vantrel-sim: " + line + "\n"};
}

} // namespace

TEST(SimArguments, UnknownOptionIsRefused)
{
    EXPECT_EQ(Simulate({"--bogus"}), Refusal(64, "Unknown option specified: bogus"));
}

TEST(SimArguments, OptionsOfADaemonAreUnknown)
{
    EXPECT_EQ(Simulate({"--daemon"}), Refusal(64, "Unknown option specified: daemon"));
}

TEST(SimArguments, OptionWithoutItsArgumentIsRefused)
{
    EXPECT_EQ(Simulate({"--fault"}), Refusal(64, "Missing option argument: fault requires <name>"));
}

TEST(SimArguments, FaultGivenTwiceIsRefused)
{
    EXPECT_EQ(Simulate({"--fault=half", "--fault=slow"}),
              Refusal(64, "Option must not be given more than once: fault"));
}

TEST(SimArguments, UnknownFaultIsRefused)
{
    EXPECT_EQ(Simulate({"--fault=fire"}),
              Refusal(64, "unknown fault \"fire\" (--help lists them)"));
}

TEST(SimArguments, ArgumentThatIsNoOptionIsRefused)
{
    EXPECT_EQ(Simulate({"half"}), Refusal(64, "unexpected argument \"half\""));
}

TEST(SimArguments, StateThatCannotBeReadIsRefused)
{
    EXPECT_EQ(Simulate({"--state=/nonexistent/my.json"}),
              Refusal(66, "/nonexistent/my.json: cannot be read: No such file or directory"));
}

TEST(SimArguments, HelpExplainsOptionsAndFaults)
{
    EXPECT_EQ(Simulate({"--help"}), (Result{0,
                                            R"(usage: vantrel-sim [--state=<file>] [--fault=<name>]
Stands in for the engine: answers the client on 127.0.0.1:7777 and shows every
request on standard error.

-h, --help                Display help information
-s<file>, --state=<file>  Read the services and modules from a JSON file
-f<name>, --fault=<name>  Misbehave on purpose, in one of the ways below

Faults, each applied to every connection:
  close           closes the connection at once after accepting it
  silent          reads the request and never answers
  slow            sends the reply a byte at a time
  half            sends half of the reply and closes
  garbage         replies with something that is not JSON
  wrong-type      replies with a JSON array in place of the object
  no-result-code  leaves "resultCode" out of the reply
  error-code      refuses every request with a code and a sentence
  huge            answers "list" with many megabytes
  reset           sends half of the reply and resets the connection
)",
                                            ""}));
}
