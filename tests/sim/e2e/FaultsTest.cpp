// The ways in which faults send, as a client sees them.

#include "tests/sim/Repeated.h"
#include "tests/sim/e2e/Client.h"
#include "tests/sim/e2e/Simulator.h"
#include "tests/support/PrivateNetwork.h"
#include "tests/support/Tool.h"
#include "tests/tool/Texts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>

using std::chrono::milliseconds;

namespace {

const std::string halfReply = R"({"description":"10)";

} // namespace

TEST(SimulatorFault, CloseWaitsForNoRequest)
{
    Simulator simulator({"--fault=close"});

    EXPECT_EQ(Client().Receive(), Answer{});

    EXPECT_EQ(simulator.End(), Served(LogLine("(nothing)", "(nothing) [close]")));
}

TEST(SimulatorFault, CloseIsNoResetForAClientThatHasSentARequest)
{
    const Simulator simulator({"--fault=close"});

    EXPECT_EQ(Ask(pidRequest), Answer{});
}

TEST(SimulatorFault, SilentReadsTheRequestAndWaitsForTheClientToLeave)
{
    Simulator simulator({"--fault=silent"});
    Client client;

    client.Send(pidRequest);
    simulator.AwaitLog(pidRequest);

    EXPECT_EQ(client.HalfClose().Receive(), Answer{});
    EXPECT_EQ(simulator.End(), Served(LogLine(pidRequest, "(nothing) [silent]")));
}

TEST(SimulatorFault, SlowSendsEachByteOnItsOwn)
{
    const Simulator simulator({"--fault=slow"});
    Client client;

    EXPECT_EQ(client.Send(pidRequest).Receive(), Answer{pidReply});

    // A segment has at least one byte. More than that arrive only if the kernel sent some again.
    EXPECT_GE(client.SegmentsReceived(), pidReply.size());
}

TEST(SimulatorFault, HalfClosesAfterHalfOfTheReply)
{
    const Simulator simulator({"--fault=half"});

    EXPECT_EQ(Ask(pidRequest), Answer{halfReply});
}

TEST(SimulatorFault, ResetBreaksTheConnectionAfterHalfOfTheReply)
{
    const Simulator simulator({"--fault=reset"});

    EXPECT_EQ(Ask(pidRequest), (Answer{halfReply, Answer::End::Reset}));
}

TEST(SimulatorFault, StayOpenSendsTheWholeReplyAndWaitsForTheClientToLeave)
{
    Simulator simulator({"--fault=stay-open"});
    Client client;

    client.Send(pidRequest);
    simulator.AwaitLog(pidRequest);
    EXPECT_EQ(client.ReceiveBytes(pidReply.size()), pidReply);
    EXPECT_FALSE(client.HearsWithin(milliseconds(200)));

    EXPECT_EQ(client.HalfClose().Receive(), Answer{});
    EXPECT_EQ(simulator.End(), Served(LogLine(pidRequest, pidReply + " [stay-open]")));
}

TEST(SimulatorFault, NoAcceptLeavesClientsWaiting)
{
    const Simulator simulator({"--fault=no-accept"});
    ShortenConnectTimeout();

    EXPECT_EQ(RunTool({"--list"}), (Outcome{69, noAnswer, ""}));
}

TEST(SimulatorFault, MeetsOnlyTheRequestsThatItIsFor)
{
    Simulator simulator({"--fault=half:pid@2", "-fclose:pid@3", "--fault", "garbage:list"});
    const std::string other = R"({"command":"update-status"})";
    const std::string otherReply =
        R"({"description":"No update has been requested","resultCode":0})";

    EXPECT_EQ(Ask(pidRequest), Answer{pidReply});
    EXPECT_EQ(Ask(other), Answer{otherReply});
    EXPECT_EQ(Ask(pidRequest), Answer{halfReply});
    EXPECT_EQ(Ask(pidRequest), Answer{});
    EXPECT_EQ(Ask(pidRequest), Answer{pidReply});

    EXPECT_EQ(simulator.End(),
              Served(LogLine(pidRequest, pidReply) + LogLine(other, otherReply) +
                     LogLine(pidRequest, halfReply + " [half]") +
                     LogLine(pidRequest, "(nothing) [close]") + LogLine(pidRequest, pidReply)));
}

TEST(SimulatorDelay, PassesBeforeEachReply)
{
    const Simulator simulator({"--delay=300"});
    const auto begin = std::chrono::steady_clock::now();

    EXPECT_EQ(Ask(pidRequest), Answer{pidReply});

    EXPECT_GE(std::chrono::steady_clock::now() - begin, milliseconds(300));
}

TEST(SimulatorFault, HugeReachesTheToolWhole)
{
    const std::string row =
        "huge                     running        yes            1.0.0          \n";
    const Simulator simulator({"--fault=huge"});

    const Outcome run = RunTool({"--list"});

    const std::string& list = run.out;
    const std::size_t first = std::min(list.find("huge "), list.size());
    EXPECT_TRUE(list.compare(first, 100000 * row.size(), Repeated(row, 100000)) == 0)
        << list.size() << " bytes, begins with\n"
        << list.substr(0, 1000) << "standard error: " << run.err;
    EXPECT_NE(list.find("heater "), std::string::npos);
}
