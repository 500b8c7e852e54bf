// Every allocation of a run fails, one at a time.

#include "tests/fault-injection/InjectedFault.h"
#include "tests/support/ScriptedEngine.h"
#include "tests/support/Tool.h"
#include "tests/tool/Texts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <iterator>

namespace {

// At least this many allocations come before the command line is read, the same for every command.
// Only the run without a command makes them fail.
constexpr int startUp = 350;

struct Command
{
    const char* name;
    const char* commandLine;
    int skipped = startUp;
};

const Command commands[] = {
    {"None", "", 0},
    {"Start", "--start abc"},
    {"List", "--list"},
    {"EngineStatus", "--engine-status"},
};

// Suits every command.
constexpr const char* reply =
    R"({"resultCode":0,"description":"ok","safeModeEnabled":false,"debugModeEnabled":true,)"
    R"("state":"running","version":"1","services":[)"
    R"({"name":"a","state":"running","version":"1","monitored":true}],"modules":[]})";

struct Attempt
{
    Outcome outcome;
    std::vector<std::string> requests;
};

bool Contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

template <typename Sequence>
bool Begins(const Sequence& part, const Sequence& whole)
{
    return part.size() <= whole.size() && std::equal(part.begin(), part.end(), whole.begin());
}

// Every run sends no more than usual, in the usual order. It ends as if nothing had happened; or
// std::bad_alloc, which is no POCO exception, ends it; or POCO catches that: in the parser, around
// the main operation, when a command has already done its work, or, as an error in a pattern, in a
// validator. The first part of the report may have been printed by then, and nothing else but that
// debug mode could not be asked for.
bool IsAllowed(const Attempt& run, const Attempt& usual)
{
    const Outcome& outcome = run.outcome;
    const bool begun =
        Begins(outcome.out, usual.outcome.out) && Begins(run.requests, usual.requests);
    const bool isDone = outcome.out == usual.outcome.out && run.requests == usual.requests;
    switch (outcome.status) {
    case -SIGABRT:
        return begun && Contains(outcome.err, "terminate called") &&
               Contains(outcome.err, "std::bad_alloc");
    case 76:
        return (begun || (outcome.out == debugModeIsOff && run.requests.size() == 1)) &&
               outcome.err == badReply + PocoUnderTest().OutOfMemory() + "\n";
    case 70:
    case 78:
        return Contains(outcome.err, "Error in regular expression: ")
                   ? begun
                   : Contains(outcome.err, "bad_alloc") && (isDone || usual.requests.empty());
    default:
        return outcome == usual.outcome && run.requests == usual.requests;
    }
}

Attempt RunWithEngine(const std::vector<std::string>& arguments)
{
    ScriptedEngine engine{reply, reply};
    Attempt run;
    run.outcome = RunTool(arguments);
    run.requests = engine.Requests();
    if (!run.requests.empty() && run.requests.back().empty()) {
        run.requests.pop_back(); // ended between its connection and its request
    }
    return run;
}

class AllocationFaults: public testing::TestWithParam<const Command*>
{
protected:
    void SetUp() override
    {
        UseBuiltToolWithoutSanitizers();
        // Without it POCO asks the C library for the user's, which may end the program by itself
        // when it finds no memory.
        setenv("HOME", "/", 1);
    }
    void TearDown() override { UseBuiltTool(); }
};

} // namespace

TEST_P(AllocationFaults, EndTheRunInAnAllowedWay)
{
    const std::vector<std::string> arguments = Words(GetParam()->commandLine);
    const Attempt usual = RunWithEngine(arguments);

    int nth = GetParam()->skipped;
    for (bool happened = true; happened;) {
        const auto fault = InjectedFault::OfAllocation(++nth);
        const Attempt run = RunWithEngine(arguments);
        happened = fault.Happened();
        EXPECT_TRUE(IsAllowed(run, usual))
            << "allocation " << nth << ": " << testing::PrintToString(run.outcome)
            << "\nrequests: " << testing::PrintToString(run.requests);
    }
    EXPECT_GT(nth, startUp + 1) << "allocations are counted";
}

INSTANTIATE_TEST_SUITE_P(Commands, AllocationFaults,
                         testing::Range(std::begin(commands), std::end(commands)),
                         [](const auto& command) { return command.param->name; });
