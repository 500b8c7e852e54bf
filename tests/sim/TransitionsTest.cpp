// Commands that take their time, as the state file says.

#include "tests/sim/TestEngine.h"

#include <gtest/gtest.h>

using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

/// An engine in debug mode with one module m1 that has these members more.
TestEngine EngineWith(const std::string& state, const std::string& members)
{
    return TestEngine(sim::ReadState(R"({"engine": {"state": "running", "version": "1",
        "safeModeEnabled": false, "debugModeEnabled": true}, "services": [], "modules": [
        {"name": "m1", "version": "1", "state": ")" +
                                         state + "\", " + members + "}]}",
                                     "test"));
}

std::string Member(const std::string& name, const std::string& json)
{
    return "\"" + name + "\": " + json;
}

std::string Done(const std::string& sentence)
{
    return R"({"description":")" + sentence + R"(","resultCode":0})";
}

std::string RefusedIn(const std::string& state, const std::string& what)
{
    return R"({"description":"m1 cannot be )" + what + R"(: its state is \")" + state +
           R"(\"","resultCode":4})";
}

} // namespace

TEST(SimTransition, OfAStartTakesItsTimeAndHasAProcessMeanwhile)
{
    TestEngine engine = EngineWith("stopped", R"("start": {"seconds": 2.5})");

    EXPECT_EQ(engine.Command("start", "m1"), Done("m1 is starting"));
    EXPECT_EQ(engine.Command("status", "m1"), Done("m1 is starting"));
    EXPECT_EQ(engine.Row("m1"), R"({"name":"m1","state":"starting","version":"1"})");
    EXPECT_EQ(engine.Command("pid", "m1"), Done("1001"));
    engine.Pass(milliseconds(2499));
    EXPECT_EQ(engine.Command("status", "m1"), Done("m1 is starting"));
    engine.Pass(milliseconds(1));
    EXPECT_EQ(engine.Command("status", "m1"), Done("m1 is running"));
    EXPECT_EQ(engine.Command("pid", "m1"), Done("1001"));
}

TEST(SimTransition, OfAStopTakesItsTimeAndThenHasNoProcess)
{
    TestEngine engine = EngineWith("running", R"("stop": {"seconds": 1})");

    EXPECT_EQ(engine.Command("stop", "m1"), Done("m1 is stopping"));
    EXPECT_EQ(engine.Command("status", "m1"), Done("m1 is stopping"));
    EXPECT_EQ(engine.Command("pid", "m1"), Done("1001"));
    engine.Pass(seconds(1));
    EXPECT_EQ(engine.Command("status", "m1"), Done("m1 is stopped"));
    EXPECT_EQ(engine.Command("pid", "m1"),
              R"({"description":"m1 has no process: its state is \"stopped\"","resultCode":4})");
}

TEST(SimTransition, OfARestartTakesItsTimeWithANewProcess)
{
    TestEngine engine = EngineWith("running", R"("restart": {"seconds": 1})");

    EXPECT_EQ(engine.Command("restart", "m1"), Done("m1 is restarting"));
    EXPECT_EQ(engine.Command("status", "m1"), Done("m1 is starting"));
    EXPECT_EQ(engine.Command("pid", "m1"), Done("1002"));
    engine.Pass(seconds(1));
    EXPECT_EQ(engine.Command("status", "m1"), Done("m1 is running"));
    EXPECT_EQ(engine.Command("pid", "m1"), Done("1002"));
}

TEST(SimTransition, OfAReconfigurationTakesItsTimeInPlaceOfTheUsualOne)
{
    TestEngine engine = EngineWith("running", R"("reconfigure": {"seconds": 5})");

    EXPECT_EQ(engine.Command("reconfigure", "m1"), Done("m1 is being reconfigured"));
    engine.Pass(milliseconds(4999));
    EXPECT_EQ(engine.Command("status", "m1"), Done("m1 is reconfiguring"));
    engine.Pass(milliseconds(1));
    EXPECT_EQ(engine.Command("status", "m1"), Done("m1 is running"));
}

TEST(SimTransition, MayTakeNoTime)
{
    TestEngine engine =
        EngineWith("running", R"("start": {}, "stop": {"seconds": 0}, "reconfigure": {})");

    EXPECT_EQ(engine.Command("reconfigure", "m1"), Done("m1 was reconfigured"));
    EXPECT_EQ(engine.Command("status", "m1"), Done("m1 is running"));
    EXPECT_EQ(engine.Command("stop", "m1"), Done("m1 was stopped"));
    EXPECT_EQ(engine.Command("status", "m1"), Done("m1 is stopped"));
    EXPECT_EQ(engine.Command("start", "m1"), Done("m1 was started"));
    EXPECT_EQ(engine.Command("status", "m1"), Done("m1 is running"));
}

TEST(SimTransition, EndsInTheStateThatIsGiven)
{
    for (const std::string command : {"start", "stop", "restart", "reconfigure"}) {
        TestEngine engine = EngineWith(command == "start" ? "stopped" : "running",
                                       Member(command, R"({"seconds": 1, "end": "odd"})"));

        engine.Command(command, "m1");
        engine.Pass(seconds(1));

        EXPECT_EQ(engine.Command("status", "m1"), Done("m1 is odd")) << command;
        EXPECT_EQ(engine.Command("pid", "m1"),
                  R"({"description":"m1 has no process: its state is \"odd\"","resultCode":4})")
            << command;
    }
}

TEST(SimTransition, MayFailAtOnce)
{
    TestEngine engine = EngineWith("stopped", R"("start": {"end": "failed"})");

    EXPECT_EQ(engine.Command("start", "m1"), Done("m1 was started"));
    EXPECT_EQ(engine.Command("status", "m1"), Done("m1 is failed"));
}

TEST(SimTransition, LeavesTheProcessToAStopThatFails)
{
    TestEngine engine = EngineWith("running", R"("stop": {"seconds": 1, "end": "running"})");

    engine.Command("stop", "m1");
    engine.Pass(seconds(1));

    EXPECT_EQ(engine.Command("pid", "m1"), Done("1001"));
}

TEST(SimTransition, RefusesCommandsThatChangeTheStateUntilItsEnd)
{
    struct Row
    {
        const char* command;
        const char* state;
        const char* meanwhile;
    };
    for (const Row& row :
         {Row{"start", "stopped", "starting"}, Row{"stop", "running", "stopping"},
          Row{"restart", "running", "starting"}, Row{"reconfigure", "running", "reconfiguring"}}) {
        SCOPED_TRACE(row.command);
        TestEngine engine = EngineWith(row.state, Member(row.command, R"({"seconds": 9})"));
        engine.Command(row.command, "m1");

        EXPECT_EQ(engine.Command("start", "m1"), RefusedIn(row.meanwhile, "started"));
        EXPECT_EQ(engine.Command("stop", "m1"), RefusedIn(row.meanwhile, "stopped"));
        EXPECT_EQ(engine.Command("restart", "m1"), RefusedIn(row.meanwhile, "restarted"));
        EXPECT_EQ(engine.Command("reconfigure", "m1"), RefusedIn(row.meanwhile, "reconfigured"));

        engine.Pass(seconds(9));
        EXPECT_EQ(
            engine.Command("restart", "m1"),
            Done(row.command == std::string("restart") ? "m1 is restarting" : "m1 was restarted"));
    }
}

TEST(SimTransition, IsNotRepeatedAfterItsEnd)
{
    TestEngine engine = EngineWith("stopped", R"("start": {"seconds": 1})");

    engine.Command("start", "m1");
    engine.Pass(seconds(1));
    engine.Command("stop", "m1");
    engine.Pass(seconds(1));

    EXPECT_EQ(engine.Command("status", "m1"), Done("m1 is stopped"));
}

TEST(SimTransition, IsEndedByAStateFromOutside)
{
    TestEngine engine = EngineWith("stopped", R"("start": {"seconds": 1})");
    engine.Command("start", "m1");

    EXPECT_TRUE(engine.Get().SetState("m1", "failed"));

    EXPECT_EQ(engine.Command("status", "m1"), Done("m1 is failed"));
    engine.Pass(seconds(1));
    EXPECT_EQ(engine.Command("status", "m1"), Done("m1 is failed"));
    EXPECT_FALSE(engine.Get().SetState("m2", "failed"));
}

TEST(SimTransition, LeavesAModuleOfAnyStateWithAProcessOrWithout)
{
    TestEngine engine = EngineWith("stopped", R"("start": {"seconds": 1})");

    engine.Get().SetState("m1", "running");
    EXPECT_EQ(engine.Command("pid", "m1"), Done("1001"));
    engine.Get().SetState("m1", "odd");
    EXPECT_EQ(engine.Command("pid", "m1"),
              R"({"description":"m1 has no process: its state is \"odd\"","resultCode":4})");
    engine.Get().SetState("m1", "reconfiguring");
    EXPECT_EQ(engine.Command("pid", "m1"), Done("1002"));
}

TEST(SimTransition, IsNotBegunByAStateOfTheFile)
{
    TestEngine engine = EngineWith("starting", R"("start": {"seconds": 1})");

    engine.Pass(seconds(10));

    EXPECT_EQ(engine.Command("status", "m1"), Done("m1 is starting"));
    EXPECT_EQ(engine.Command("stop", "m1"), Done("m1 was stopped"));
}
