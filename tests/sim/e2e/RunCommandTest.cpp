// The simulator that runs a command and ends with it.

#include "tests/sim/e2e/Client.h"
#include "tests/sim/e2e/Simulator.h"
#include "tests/sim/e2e/TemporaryFile.h"
#include "tests/support/Tool.h"

#include <gtest/gtest.h>

#include <fcntl.h>

namespace {

/// The run of a simulator with this command, from its start to its end.
Outcome RunWith(const std::vector<std::string>& command,
                const std::vector<std::string>& options = {})
{
    std::vector<std::string> words = {VANTREL_SIM};
    words.insert(words.end(), options.begin(), options.end());
    words.emplace_back("--");
    words.insert(words.end(), command.begin(), command.end());
    return ::Run(words);
}

Outcome Ended(int status, const std::string& out = "", const std::string& err = "")
{
    return {status, out, Served(err).err};
}

class SimulatorCommandSignal: public testing::TestWithParam<int>
{
};

} // namespace

TEST(SimulatorCommand, EndsTheSimulatorWithItsExitStatus)
{
    EXPECT_EQ(RunWith({"true"}), Ended(0));
    EXPECT_EQ(RunWith({"sh", "-c", "exit 77"}), Ended(77));
}

TEST(SimulatorCommand, HasTheStandardStreams)
{
    EXPECT_EQ(RunWith({"sh", "-c", "echo out; echo err >&2; cat; exit 1"}),
              Ended(1, "out\n", "err\n"));
}

TEST(SimulatorCommand, FindsTheSimulatorListening)
{
    EXPECT_EQ(RunShell(std::string(VANTREL_SIM) + " --log=/dev/null -- $QUORLAN --pid=pump1"),
              (Outcome{0, "1004\n", ""}));
}

TEST(SimulatorCommand, TakesItsArgumentsUntouched)
{
    EXPECT_EQ(RunWith({"printf", "<%s>", "--fault=x", "--help", "--", "", "a b", "-s"}),
              Ended(0, "<--fault=x><--help><--><><a b><-s>"));
}

TEST(SimulatorCommand, ThatDoesNotExistIs127)
{
    EXPECT_EQ(
        RunWith({"no-such-command"}),
        Ended(127, "", "vantrel-sim: cannot run no-such-command: No such file or directory\n"));
}

TEST(SimulatorCommand, ThatIsNotExecutableIs126)
{
    EXPECT_EQ(RunWith({"/"}), Ended(126, "", "vantrel-sim: cannot run /: Permission denied\n"));
}

TEST(SimulatorCommand, ThatASignalEndsIsTheSignalAnd128)
{
    EXPECT_EQ(RunWith({"sh", "-c", "kill -KILL $$"}), Ended(128 + SIGKILL));
}

TEST(SimulatorCommand, MustNotBeMissing)
{
    EXPECT_EQ(RunWith({}), Refused(64, "no command after \"--\""));
}

TEST(SimulatorCommand, IsNotRunByASimulatorThatDoesNotStart)
{
    const Simulator other;

    EXPECT_EQ(RunWith({"echo", "run"}),
              Refused(69, "cannot listen: Net Exception: Address already in use: 127.0.0.1:7777"));
}

TEST(SimulatorCommand, HasNoSignalsBlocked)
{
    EXPECT_EQ(RunWith({"grep", "SigBlk", "/proc/self/status"}),
              Ended(0, "SigBlk:\t0000000000000000\n"));
}

TEST(SimulatorCommand, HasNoneOfTheSimulatorsDescriptors)
{
    // As many as without the simulator: whoever runs the tests may have left some open.
    const std::vector<std::string> count = {"sh", "-c", "ls /proc/self/fd | wc -l"};

    EXPECT_EQ(RunWith(count, {"--log=/dev/null"}), ::Run(count));
}

TEST_P(SimulatorCommandSignal, IsPassedOn)
{
    Simulator simulator({"--", "sleep", "1000"});

    EXPECT_EQ(simulator.End(GetParam()), Ended(128 + GetParam()));
}

TEST_P(SimulatorCommandSignal, DoesNotEndTheSimulatorBeforeTheCommand)
{
    // KILL, as a process that is not yet the sleep would take another signal for the trap's.
    Simulator simulator({"--", "sh", "-c",
                         "trap 'kill -KILL $!; echo trapped; exit 5' INT TERM HUP\n"
                         "sleep 1000 & echo ready >&2; wait"});
    simulator.AwaitLog("ready");

    EXPECT_EQ(simulator.End(GetParam()), Ended(5, "trapped\n", "ready\n"));
}

TEST(SimulatorCommand, EndsTheSimulatorAtOnceWhateverItsClientsAreDoing)
{
    const TemporaryFile fifo(TemporaryFile::Kind::Fifo);
    Simulator simulator({"--fault=silent", "--", "sh", "-c", "exec cat " + fifo.Path()});
    Descriptor end(open(fifo.Path().c_str(), O_WRONLY | O_CLOEXEC));
    const Client idle;
    Client unanswered;
    unanswered.Send(R"({"command":"list"})");
    simulator.AwaitLog("[silent]");

    end.Close();

    EXPECT_EQ(simulator.End(0).status, 0);
}

TEST(SimulatorCommand, IsTheOnlyChildWhoseEndMatters)
{
    EXPECT_EQ(
        ::Run({"sh", "-c", "sleep 0.2 & exec \"$0\" -- sh -c 'sleep 0.6; exit 3'", VANTREL_SIM}),
        Ended(3));
}

TEST(SimulatorCommand, IsWaitedForWhereTheCallerIgnoresTheEndsOfChildren)
{
    EXPECT_EQ(::Run({"env", "--ignore-signal=CHLD", VANTREL_SIM, "--", "sh", "-c", "exit 3"}),
              Ended(3));
}

INSTANTIATE_TEST_SUITE_P(By, SimulatorCommandSignal, testing::Values(SIGINT, SIGTERM, SIGHUP),
                         NameOfSignal);
