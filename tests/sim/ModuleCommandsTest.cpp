#include "tests/sim/TestEngine.h"

#include <gtest/gtest.h>

namespace {

/// The default set: pump1 runs, valve is stopped, mixer takes two seconds to start, scale has
/// failed and fails to start, storage is a service.
class SimModule: public testing::Test
{
protected:
    SimModule() { engine.EnableDebugMode(); }

    TestEngine engine;
};

} // namespace

TEST_F(SimModule, StartsFromAnyStateWithoutAProcess)
{
    EXPECT_EQ(engine.Command("start", "valve"),
              R"({"description":"valve was started","resultCode":0})");
    EXPECT_EQ(engine.Command("start", "mixer"),
              R"({"description":"mixer is starting","resultCode":0})");
    EXPECT_EQ(engine.Command("start", "scale"),
              R"({"description":"scale was started","resultCode":0})");

    EXPECT_EQ(engine.Row("valve"),
              R"({"monitored":true,"name":"valve","state":"running","version":"1.1.0"})");
    EXPECT_EQ(engine.Command("status", "valve"),
              R"({"description":"valve is running","resultCode":0})");
    EXPECT_EQ(engine.Command("status", "mixer"),
              R"({"description":"mixer is starting","resultCode":0})");
    EXPECT_EQ(engine.Command("status", "scale"),
              R"({"description":"scale is failed, not monitored","resultCode":0})");
    engine.Pass(std::chrono::seconds(2));
    EXPECT_EQ(engine.Command("status", "mixer"),
              R"({"description":"mixer is running","resultCode":0})");
}

TEST_F(SimModule, IsNotStartedWhileItRunsOrStarts)
{
    EXPECT_EQ(
        engine.Command("start", "pump1"),
        R"({"description":"pump1 cannot be started: its state is \"running\"","resultCode":4})");
    EXPECT_EQ(
        engine.Command("start", "heater"),
        R"({"description":"heater cannot be started: its state is \"starting\"","resultCode":4})");
}

TEST_F(SimModule, StopsWhileItRuns)
{
    EXPECT_EQ(engine.Command("stop", "pump1"),
              R"({"description":"pump1 was stopped","resultCode":0})");

    EXPECT_EQ(engine.Row("pump1"),
              R"({"monitored":true,"name":"pump1","state":"stopped","version":"1.4.2"})");
    EXPECT_EQ(engine.Command("status", "pump1"),
              R"({"description":"pump1 is stopped","resultCode":0})");
}

TEST_F(SimModule, IsNotStoppedWhenItDoesNotRun)
{
    EXPECT_EQ(
        engine.Command("stop", "valve"),
        R"({"description":"valve cannot be stopped: its state is \"stopped\"","resultCode":4})");
    EXPECT_EQ(
        engine.Command("stop", "mixer"),
        R"({"description":"mixer cannot be stopped: its state is \"terminated\"","resultCode":4})");
}

TEST_F(SimModule, RestartsWithANewProcess)
{
    const std::string pid = engine.Command("pid", "pump1");

    EXPECT_EQ(engine.Command("restart", "pump1"),
              R"({"description":"pump1 was restarted","resultCode":0})");

    EXPECT_NE(engine.Command("pid", "pump1"), pid);
    EXPECT_EQ(engine.Command("status", "pump1"),
              R"({"description":"pump1 is running","resultCode":0})");
}

TEST_F(SimModule, RestartsAlsoWhenItDoesNotRun)
{
    engine.Command("restart", "valve");

    EXPECT_EQ(engine.Command("status", "valve"),
              R"({"description":"valve is running","resultCode":0})");
}

TEST_F(SimModule, ReconfiguresForTwoSecondsAndKeepsItsProcess)
{
    const std::string pid = engine.Command("pid", "pump1");

    EXPECT_EQ(engine.Command("reconfigure", "pump1"),
              R"({"description":"pump1 is being reconfigured","resultCode":0})");

    engine.Pass(std::chrono::milliseconds(1999));
    EXPECT_EQ(engine.Row("pump1"),
              R"({"monitored":true,"name":"pump1","state":"reconfiguring","version":"1.4.2"})");
    engine.Pass(std::chrono::milliseconds(1));
    EXPECT_EQ(engine.Row("pump1"),
              R"({"monitored":true,"name":"pump1","state":"running","version":"1.4.2"})");
    EXPECT_EQ(engine.Command("pid", "pump1"), pid);
}

TEST_F(SimModule, StaysStoppedWhenStoppedDuringItsReconfiguration)
{
    engine.Command("reconfigure", "pump1");
    engine.Command("stop", "pump1");
    engine.Pass(std::chrono::seconds(10));

    EXPECT_EQ(engine.Command("status", "pump1"),
              R"({"description":"pump1 is stopped","resultCode":0})");
}

TEST_F(SimModule, StaysReconfiguringWithoutACommandThatStartedIt)
{
    sim::State state;
    state.modules.resize(1);
    state.modules[0].name = "m1";
    state.modules[0].state = "reconfiguring";
    TestEngine reconfiguring(state);
    reconfiguring.Pass(std::chrono::seconds(10));

    EXPECT_EQ(reconfiguring.Command("status", "m1"),
              R"({"description":"m1 is reconfiguring","resultCode":0})");
}

TEST_F(SimModule, IsNotReconfiguredWhenItDoesNotRun)
{
    EXPECT_EQ(
        engine.Command("reconfigure", "valve"),
        R"({"description":"valve cannot be reconfigured: its state is \"stopped\"","resultCode":4})");
}

TEST_F(SimModule, IsNoLongerMonitoredAfterMonitor)
{
    EXPECT_EQ(engine.Command("monitor", "pump1"),
              R"({"description":"The heartbeat of pump1 is no longer monitored","resultCode":0})");

    EXPECT_EQ(engine.Row("pump1"),
              R"({"monitored":false,"name":"pump1","state":"running","version":"1.4.2"})");
}

TEST_F(SimModule, RefusesMonitorWhereNothingIsMonitored)
{
    EXPECT_EQ(
        engine.Command("monitor", "pump2"),
        R"({"description":"pump2 is not monitored: there is nothing to stop","resultCode":4})");
    EXPECT_EQ(
        engine.Command("monitor", "storage"),
        R"({"description":"storage is not monitored: there is nothing to stop","resultCode":4})");
    EXPECT_EQ(engine.Row("storage"), R"({"name":"storage","state":"running","version":"4.2.0"})");
}

TEST_F(SimModule, ReportsItsPidAsABareNumber)
{
    EXPECT_EQ(engine.Command("pid", "storage"), R"({"description":"1001","resultCode":0})");
    EXPECT_EQ(engine.Command("pid", "pump1"), R"({"description":"1004","resultCode":0})");
}

TEST_F(SimModule, HasNoPidWithoutAProcess)
{
    EXPECT_EQ(engine.Command("pid", "scale"),
              R"({"description":"scale has no process: its state is \"failed\"","resultCode":4})");
}

TEST_F(SimModule, ReportsThatItIsNotMonitored)
{
    EXPECT_EQ(engine.Command("status", "scale"),
              R"({"description":"scale is failed, not monitored","resultCode":0})");
    EXPECT_EQ(engine.Command("status", "storage"),
              R"({"description":"storage is running","resultCode":0})");
}

TEST_F(SimModule, MayBeAService)
{
    EXPECT_EQ(engine.Command("stop", "storage"),
              R"({"description":"storage was stopped","resultCode":0})");

    EXPECT_EQ(engine.Row("storage"), R"({"name":"storage","state":"stopped","version":"4.2.0"})");
}

TEST_F(SimModule, MustBeKnown)
{
    for (const char* command :
         {"start", "stop", "restart", "reconfigure", "monitor", "status", "pid"}) {
        EXPECT_EQ(engine.Command(command, "nosuch"),
                  R"({"description":"Unknown module \"nosuch\"","resultCode":3})")
            << command;
    }
}

TEST_F(SimModule, MustBeNamedByLettersAndDigits)
{
    const char* const refusal =
        R"({"description":"\"module\" is not 1 to 16 letters and digits","resultCode":1})";

    EXPECT_EQ(engine.Answer(R"({"command":"status"})"), refusal);
    EXPECT_EQ(engine.Answer(R"({"command":"status","module":4})"), refusal);
    EXPECT_EQ(engine.Command("status", ""), refusal);
    EXPECT_EQ(engine.Command("status", "pump-1"), refusal);
    EXPECT_EQ(engine.Command("status", "a2345678901234567"), refusal);
    EXPECT_EQ(engine.Command("status", "a234567890123456"),
              R"({"description":"Unknown module \"a234567890123456\"","resultCode":3})");
}

TEST(SimDebugMode, IsNeededForWhatChangesAModule)
{
    TestEngine engine;
    const std::string before = engine.Answer(R"({"command":"list"})");

    for (const char* command : {"start", "stop", "restart", "reconfigure", "monitor"}) {
        EXPECT_EQ(engine.Command(command, "pump1"),
                  R"({"description":"Debug mode is disabled","resultCode":5})")
            << command;
    }

    EXPECT_EQ(engine.Answer(R"({"command":"list"})"), before);
}

TEST(SimDebugMode, IsNotNeededForWhatOnlyAsks)
{
    TestEngine engine;

    EXPECT_EQ(engine.Command("status", "pump1"),
              R"({"description":"pump1 is running","resultCode":0})");
    EXPECT_EQ(engine.Command("pid", "pump1"), R"({"description":"1004","resultCode":0})");
}
