// What the tool shows of the simulator, command by command.

#include "tests/sim/e2e/Simulator.h"
#include "tests/sim/e2e/TemporaryFile.h"
#include "tests/support/Tool.h"
#include "tests/tool/Texts.h"

#include <gtest/gtest.h>

namespace {

/// The tool against a simulator with its default set.
class SimulatorCommands: public testing::Test
{
protected:
    static Outcome Tool(const std::string& arguments) { return RunTool(Words(arguments)); }

    static void SwitchDebugModeOn()
    {
        ASSERT_EQ(Tool("--debug true"), (Outcome{0, "Debug mode is enabled\n", ""}));
    }

    static std::string RowOf(const std::string& name)
    {
        const std::string list = Tool("--list").out;
        const std::size_t start = list.find("\n" + name + " ") + 1;
        return list.substr(start, list.find('\n', start) - start);
    }

    const Simulator simulator;
};

Outcome Done(const std::string& sentence)
{
    return {0, sentence + "\n", ""};
}

std::string StateOfNModules(int count)
{
    std::string modules;
    for (int i = 0; i < count; ++i) {
        modules += (i == 0 ? "" : ",") + (R"({"name":"m)" + std::to_string(i)) +
                   R"(","state":"running","version":"1"})";
    }
    return R"({"engine":{"state":"running","version":"1","safeModeEnabled":false,)"
           R"("debugModeEnabled":false},"services":[],"modules":[)" +
           modules + "]}";
}

} // namespace

TEST_F(SimulatorCommands, ListShowsTheDefaultSet)
{
    EXPECT_EQ(Tool("--list"),
              (Outcome{0,
                       "SERVICE NAME             STATE          VERSION        \n"
                       "-------------------------------------------------------\n"
                       "storage                  running        4.2.0          \n"
                       "network                  running        4.2.0          \n"
                       "telemetry                starting       3.9.2          \n"
                       "console                  stopped        1.0.4          \n"
                       "\n"
                       "MODULE NAME              STATE          HEARTBEAT      VERSION        \n"
                       "----------------------------------------------------------------------\n"
                       "pump1                    running        yes            1.4.2          \n"
                       "pump2                    running        no             1.4.2          \n"
                       "valve                    stopped        yes            1.1.0          \n"
                       "mixer                    terminated     yes            0.9.7          \n"
                       "scale                    failed         no             2.0.0          \n"
                       "heater                   starting       yes            2.3.11         \n"
                       "\n",
                       ""}));
}

TEST_F(SimulatorCommands, EngineStatusShowsTheDefaultSet)
{
    EXPECT_EQ(Tool("--engine-status"), (Outcome{0,
                                                "Vantrel status\n"
                                                "------------------------------\n"
                                                "Safe mode:     disabled       \n"
                                                "Debug mode:    disabled       \n"
                                                "State:         running        \n"
                                                "Version:       4.2.0          \n"
                                                "Build info:    sim            \n"
                                                "\n",
                                                ""}));
}

TEST_F(SimulatorCommands, DebugOpensAndClosesTheGateOfTheTool)
{
    EXPECT_EQ(Tool("--start valve"), (Outcome{0, debugModeIsOff, ""}));
    EXPECT_EQ(Tool("--debug TRUE"), Done("Debug mode is enabled"));
    EXPECT_EQ(Tool("--start valve"), Done("valve was started"));
    EXPECT_EQ(Tool("--debug false"), Done("Debug mode is disabled"));
    EXPECT_EQ(Tool("--stop valve"), (Outcome{0, debugModeIsOff, ""}));
    EXPECT_EQ(Tool("--status valve"), Done("valve is running"));
}

TEST_F(SimulatorCommands, StartShowsInTheStatusThePidAndTheList)
{
    SwitchDebugModeOn();

    EXPECT_EQ(Tool("--start valve"), Done("valve was started"));

    EXPECT_EQ(Tool("--status valve"), Done("valve is running"));
    EXPECT_EQ(Tool("--pid valve"), Done("1007"));
    EXPECT_EQ(RowOf("valve"),
              "valve                    running        yes            1.1.0          ");
}

TEST_F(SimulatorCommands, StopShowsInTheStatusThePidAndTheList)
{
    SwitchDebugModeOn();

    EXPECT_EQ(Tool("--stop storage"), Done("storage was stopped"));

    EXPECT_EQ(Tool("--status storage"), Done("storage is stopped"));
    EXPECT_EQ(Tool("--pid storage"),
              (Outcome{4, "storage has no process: its state is \"stopped\"\n", ""}));
    EXPECT_EQ(RowOf("storage"), "storage                  stopped        4.2.0          ");
}

TEST_F(SimulatorCommands, RestartShowsInTheStatusAndThePid)
{
    SwitchDebugModeOn();
    EXPECT_EQ(Tool("--pid pump1"), Done("1004"));

    EXPECT_EQ(Tool("--restart pump1"), Done("pump1 was restarted"));
    EXPECT_EQ(Tool("--restart scale"), Done("scale was restarted"));

    EXPECT_EQ(Tool("--pid pump1"), Done("1007"));
    EXPECT_EQ(Tool("--status scale"), Done("scale is running, not monitored"));
}

TEST_F(SimulatorCommands, ReconfigureShowsInTheStatusUntilItIsOver)
{
    SwitchDebugModeOn();

    EXPECT_EQ(Tool("--reconfigure pump1"), Done("pump1 is being reconfigured"));

    const Outcome status = Tool("--status pump1");
    EXPECT_TRUE(status == Done("pump1 is reconfiguring") || status == Done("pump1 is running"))
        << testing::PrintToString(status);
    EXPECT_EQ(Tool("--pid pump1"), Done("1004"));
}

TEST_F(SimulatorCommands, MonitorShowsInTheStatusAndTheList)
{
    SwitchDebugModeOn();

    EXPECT_EQ(Tool("--status heater"), Done("heater is starting"));

    EXPECT_EQ(Tool("--monitor heater"), Done("The heartbeat of heater is no longer monitored"));

    EXPECT_EQ(Tool("--status heater"), Done("heater is starting, not monitored"));

    EXPECT_EQ(RowOf("heater"),
              "heater                   starting       no             2.3.11         ");
}

TEST_F(SimulatorCommands, WhatCannotBeDoneIsRefusedWithACodeAndASentence)
{
    SwitchDebugModeOn();

    EXPECT_EQ(Tool("--start pump1"),
              (Outcome{4, "pump1 cannot be started: its state is \"running\"\n", ""}));
    EXPECT_EQ(Tool("--stop valve"),
              (Outcome{4, "valve cannot be stopped: its state is \"stopped\"\n", ""}));
    EXPECT_EQ(Tool("--reconfigure mixer"),
              (Outcome{4, "mixer cannot be reconfigured: its state is \"terminated\"\n", ""}));
    EXPECT_EQ(Tool("--monitor scale"),
              (Outcome{4, "scale is not monitored: there is nothing to stop\n", ""}));
}

TEST_F(SimulatorCommands, OnAnUnknownModuleAreRefusedWithACodeAndASentence)
{
    SwitchDebugModeOn();

    for (const char* command :
         {"start", "stop", "restart", "reconfigure", "monitor", "status", "pid"}) {
        EXPECT_EQ(Tool(std::string("--") + command + " ghost"),
                  (Outcome{3, "Unknown module \"ghost\"\n", ""}))
            << command;
    }
}

TEST_F(SimulatorCommands, UpdateStatusBeforeAnyUpdateSaysSo)
{
    EXPECT_EQ(Tool("--update-status"), Done("No update has been requested"));
}

TEST(SimulatorUpdate, OfManyModulesTakesAWhileThatUpdateStatusReportsOn)
{
    const TemporaryFile file(StateOfNModules(1000));
    const Simulator simulator({"--state=" + file.Path()});

    EXPECT_EQ(RunTool({"--update"}), Done("Update started"));

    const Outcome progress = RunTool({"--update-status"});
    const std::string begin = "Update in progress: ";
    const std::string end = " of 1000 modules done";
    const int modules = std::atoi(progress.out.c_str() + begin.size());
    EXPECT_EQ(progress, Done(begin + std::to_string(modules) + end));
    EXPECT_EQ(RunTool({"--update"}), (Outcome{4, "An update is already in progress\n", ""}));
    EXPECT_NE(RunTool({"--engine-status"}).out.find("State:         updating       \n"),
              std::string::npos);
}

TEST(SimulatorUpdate, OfNoModulesIsFinishedAtOnce)
{
    const TemporaryFile file(StateOfNModules(0));
    const Simulator simulator({"--state=" + file.Path()});

    EXPECT_EQ(RunTool({"--update"}), Done("Update started"));
    EXPECT_EQ(RunTool({"--update-status"}), Done("Update finished: 0 of 0 modules done"));
    EXPECT_EQ(RunTool({"--update"}), Done("Update started"));
}
