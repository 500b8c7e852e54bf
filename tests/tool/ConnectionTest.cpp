// One request out, one reply in: what is on the wire, how long the tool waits, what it keeps.

#include "tests/support/PrivateNetwork.h"
#include "tests/support/ScriptedEngine.h"
#include "tests/support/Tool.h"
#include "tests/tool/FullListener.h"
#include "tests/tool/Texts.h"

#include <gtest/gtest.h>

#include <chrono>
#include <future>

using namespace std::chrono_literals;

namespace {

/// A reply of exactly size bytes to "status", whose report is long.
struct LongReply
{
    explicit LongReply(std::size_t size)
    {
        const std::string head = R"({"description":")";
        const std::string tail = R"(","resultCode":0})";
        description.assign(size - head.size() - tail.size(), 'x');
        text = head + description + tail;
    }

    std::string description;
    std::string text;
};

const Outcome cutOff{76, "", emptyReply};

} // namespace

TEST(Connection, RefusedIsReportedOnStandardOutput)
{
    EXPECT_EQ(RunTool({"--update"}), (Outcome{69, connectionRefused, ""}));
}

TEST(Connection, ThatNobodyAnswersIsReportedAsNoResponseInTime)
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

TEST(Connection, CarriesOneCompactObjectAndNothingBehindIt)
{
    ScriptedEngine engine{R"({"description":"ok","resultCode":0})"};

    EXPECT_EQ(RunTool(Words("--status abc")), (Outcome{0, "ok\n", ""}));

    EXPECT_EQ(engine.Requests(),
              std::vector<std::string>{R"({"command":"status","module":"abc"})"});
}

TEST(Connection, ClosedWithoutAReplyLeavesAnEmptyReply)
{
    ScriptedEngine engine{""};

    EXPECT_EQ(RunTool({"--update"}), cutOff);
}

TEST(Connection, ClosedBeforeTheRequestIsReadLeavesAnEmptyReply)
{
    ScriptedEngine engine;
    engine.OnConnection(Script().CloseWithoutReading());

    EXPECT_EQ(RunTool({"--update"}), cutOff);
}

TEST(Connection, ResetBeforeAReplyLeavesAnEmptyReply)
{
    ScriptedEngine engine;
    engine.OnConnection(Script().AwaitRequest().Reset());

    EXPECT_EQ(RunTool({"--update"}), cutOff);
}

TEST(Connection, WithASilentEngineIsGivenUpAfterFiveSecondsWithoutATimeoutLine)
{
    ScriptedEngine engine;
    engine.OnConnection(Script().AwaitRequest().AwaitClientClose());

    EXPECT_EQ(RunTool({"--update"}), cutOff);

    EXPECT_GT(engine.Connections().at(0).patience.count(), 4.5);
    EXPECT_LT(engine.Connections().at(0).patience.count(), 60);
}

// The longest that a stalled engine can hold a run up.
TEST(Connection, ThatStallsAtBothExchangesOfAGatedCommandIsGivenUpTwice)
{
    const LongReply reply(8192);
    std::string debugMode = debugModeOn;
    debugMode.resize(8192, ' ');
    ScriptedEngine engine;
    engine.OnConnection(Script().AwaitRequest().Send(debugMode).AwaitClientClose());
    engine.OnConnection(Script().AwaitRequest().Send(reply.text).AwaitClientClose());

    EXPECT_EQ(RunTool({"--start", "abc"}), (Outcome{0, reply.description + "\n", ""}));

    ASSERT_EQ(engine.Connections().size(), 2U);
    for (const auto& connection : engine.Connections()) {
        EXPECT_GT(connection.patience.count(), 4.5);
        EXPECT_LT(connection.patience.count(), 60);
    }
}

TEST(Connection, LeftOpenAfterAShortReplyLosesTheReply)
{
    ScriptedEngine engine;
    engine.OnConnection(
        Script().AwaitRequest().Send(R"({"description":"ok","resultCode":0})").AwaitClientClose());

    EXPECT_EQ(RunTool({"--update"}), cutOff);

    EXPECT_GT(engine.Connections().at(0).patience.count(), 4.5);
}

TEST(Connection, IsReadUntilTheEngineClosesAlsoBeyondOneBlock)
{
    const LongReply reply(24593);
    ScriptedEngine engine;
    engine.OnConnection(Reply(reply.text));

    EXPECT_EQ(RunTool({"--update"}), (Outcome{0, reply.description + "\n", ""}));
}

TEST(Connection, LeftOpenAfterWholeBlocksKeepsTheReply)
{
    const LongReply reply(16384);
    ScriptedEngine engine;
    engine.OnConnection(Script().AwaitRequest().Send(reply.text).AwaitClientClose());

    EXPECT_EQ(RunTool({"--update"}), (Outcome{0, reply.description + "\n", ""}));
}

TEST(Connection, LeftOpenAfterOneByteMoreThanABlockKeepsTheBlockAlone)
{
    const LongReply reply(8192);
    ScriptedEngine engine;
    engine.OnConnection(Script().AwaitRequest().Send(reply.text + " ").AwaitClientClose());

    EXPECT_EQ(RunTool({"--update"}), (Outcome{0, reply.description + "\n", ""}));
}

TEST(Connection, ResetInsideTheReplyKeepsTheWholeBlocks)
{
    const LongReply reply(8192);
    ScriptedEngine engine;
    engine.OnConnection(Script().AwaitRequest().Send(reply.text + " ").Reset());

    EXPECT_EQ(RunTool({"--update"}), (Outcome{0, reply.description + "\n", ""}));
}

TEST(Connection, ResetInsideTheFirstBlockLeavesAnEmptyReply)
{
    const LongReply reply(8191);
    ScriptedEngine engine;
    engine.OnConnection(Script().AwaitRequest().Send(reply.text).Reset());

    EXPECT_EQ(RunTool({"--update"}), cutOff);
}

TEST(Connection, ThatDripsIsReadToItsEndHoweverLongItTakes)
{
    ScriptedEngine engine;
    engine.OnConnection(
        Script().AwaitRequest().SendInPieces(R"({"description":"ok","resultCode":0})", 12, 2500ms));

    // Three pieces: longer in all than the wait for one of them.
    EXPECT_EQ(RunTool({"--update"}), (Outcome{0, "ok\n", ""}));
}

TEST(Connection, KeepsItsSendingSideOpenUntilTheReplyIsRead)
{
    ScriptedEngine engine;
    engine.OnConnection(
        Script().AwaitClientClose().Send(R"({"description":"too late","resultCode":0})"));

    EXPECT_EQ(RunTool({"--update"}), cutOff);

    EXPECT_EQ(engine.Connections().at(0).received, R"({"command":"update"})");
    EXPECT_GT(engine.Connections().at(0).patience.count(), 4.5);
}

TEST(Connection, ThatTheEngineHalfClosesIsReadToThere)
{
    ScriptedEngine engine;
    engine.OnConnection(Script()
                            .AwaitRequest()
                            .Send(R"({"description":"ok","resultCode":0})")
                            .HalfClose()
                            .AwaitClientClose());

    EXPECT_EQ(RunTool({"--update"}), (Outcome{0, "ok\n", ""}));
}

TEST(Connection, IsOneForEachExchange)
{
    ScriptedEngine engine{debugModeOn, R"({"description":"ok","resultCode":0})"};

    EXPECT_EQ(RunTool(Words("--start abc")), (Outcome{0, "ok\n", ""}));

    EXPECT_EQ(
        engine.Requests(),
        (std::vector<std::string>{engineStatusRequest, R"({"command":"start","module":"abc"})"}));
}

TEST(Connection, IsLeftAloneByTheEnvironment)
{
    setenv("http_proxy", "http://127.0.0.1:1", 1);
    setenv("ALL_PROXY", "socks5://127.0.0.1:1", 1);
    ScriptedEngine engine{R"({"description":"ok","resultCode":0})"};

    EXPECT_EQ(RunTool({"--update"}), (Outcome{0, "ok\n", ""}));
}
