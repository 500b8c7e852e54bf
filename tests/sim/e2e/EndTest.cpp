// How the simulator is ended: by either signal, whatever its clients are doing.

#include "tests/sim/e2e/Client.h"
#include "tests/sim/e2e/Simulator.h"
#include "tests/sim/e2e/TemporaryFile.h"

#include <gtest/gtest.h>

#include <fcntl.h>

namespace {

const char* const listRequest = R"({"command":"list"})";

class SimulatorEnd: public testing::TestWithParam<int>
{
};

/// What the client of a simulator with a fault receives when the simulator is ended.
Answer AnswerAtTheEnd(const std::string& fault, int signal)
{
    Simulator simulator({"--fault=" + fault});
    Client client;
    client.Send(listRequest);
    simulator.AwaitLog(listRequest);

    const Outcome outcome = simulator.End(signal);

    EXPECT_EQ(outcome.status, 0) << outcome.err;
    return client.Receive();
}

} // namespace

TEST_P(SimulatorEnd, IsCleanWithoutClients)
{
    EXPECT_EQ(Simulator().End(GetParam()), Served(""));
}

TEST_P(SimulatorEnd, DoesNotWaitForARequest)
{
    Simulator simulator;
    const Client idle;
    Client half;
    half.Send(R"({"command":)");

    const Outcome outcome = simulator.End(GetParam());

    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.err.find("5 seconds"), std::string::npos) << outcome.err;
}

TEST_P(SimulatorEnd, DoesNotWaitForAClientThatWaitsForAnAnswer)
{
    EXPECT_EQ(AnswerAtTheEnd("silent", GetParam()), Answer{});
}

TEST_P(SimulatorEnd, DoesNotWaitForAClientThatDoesNotRead)
{
    EXPECT_LT(AnswerAtTheEnd("huge", GetParam()).bytes.size(), 6U * 1024 * 1024);
}

TEST_P(SimulatorEnd, CutsASlowReplyShort)
{
    EXPECT_EQ(AnswerAtTheEnd("slow", GetParam()).bytes.find(R"("services")"), std::string::npos);
}

// Before it listens, a signal ends it like any other program.
TEST_P(SimulatorEnd, DoesNotWaitForItsState)
{
    const TemporaryFile file(TemporaryFile::Kind::Fifo);
    Stream out = MakePipe();
    Stream err = MakePipe();
    const pid_t process = Spawn({VANTREL_SIM, "--state=" + file.Path()}, out, err);
    Descriptor writer(open(file.Path().c_str(), O_WRONLY | O_CLOEXEC)); // waits for the reader

    kill(process, GetParam());
    writer.Close(); // the end of the state, for one that ignored the signal

    Outcome outcome;
    Finish(process, out, err, outcome);
    EXPECT_EQ(outcome, (Outcome{-GetParam(), "", ""}));
}

TEST(SimulatorStart, WithoutAWorkingDirectoryIsOneLine)
{
    EXPECT_EQ(
        ::Run({"sh", "-c", "cd \"$(mktemp -d)\" && rmdir \"$PWD\" && exec \"$0\"", VANTREL_SIM}),
        Refused(64, "System exception: cannot get current directory"));
}

INSTANTIATE_TEST_SUITE_P(By, SimulatorEnd, testing::Values(SIGINT, SIGTERM), NameOfSignal);
