// How long the tool waits for the engine. What it makes of a connection that is slow or breaks is
// in FaultMatrixTest.cpp.

#include "tests/support/PrivateNetwork.h"
#include "tests/support/ScriptedEngine.h"
#include "tests/support/Tool.h"
#include "tests/tool/FullListener.h"
#include "tests/tool/Texts.h"

#include <gtest/gtest.h>

#include <future>

TEST(Connection, IsReportedAsTimedOutIfNobodyAccepts)
{
    const FullListener listener;
    ShortenConnectTimeout();

    // At the same time, as each takes minutes where the system's patience cannot be shortened.
    const auto run = [](const char* commandLine) {
        return std::async(std::launch::async, [=] { return RunTool(Words(commandLine)); });
    };
    std::future<Outcome> update = run("--update");
    std::future<Outcome> list = run("--list");
    std::future<Outcome> start = run("--start abc");

    EXPECT_EQ(update.get(), (Outcome{69, noAnswer, ""}));
    EXPECT_EQ(list.get(), (Outcome{69, noAnswer, ""}));
    EXPECT_EQ(start.get(), (Outcome{76, noAnswer + debugModeIsOff, emptyReply}));
}

// The longest that a stalled engine can hold up a run. What came in whole blocks of 8192 bytes
// counts.
TEST(Connection, ThatStallsAtBothExchangesOfAGatedCommandIsGivenUpTwice)
{
    std::string debugMode = debugModeOn;
    debugMode.resize(8192, ' ');
    std::string reply = accepted;
    reply.resize(8192, ' ');
    ScriptedEngine engine;
    engine.OnConnection(Script().AwaitRequest().Send(debugMode).AwaitClientClose());
    engine.OnConnection(Script().AwaitRequest().Send(reply).AwaitClientClose());

    EXPECT_EQ(RunTool({"--start", "abc"}), (Outcome{0, "ok\n", ""}));

    ASSERT_EQ(engine.Connections().size(), 2U);
    for (const auto& connection : engine.Connections()) {
        EXPECT_GT(connection.patience.count(), 4.5);
        EXPECT_LT(connection.patience.count(), 60);
    }
}
