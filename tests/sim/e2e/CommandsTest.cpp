// One command of each kind, from the real tool to the simulator and back.

#include "tests/sim/e2e/Simulator.h"
#include "tests/support/Tool.h"
#include "tests/tool/Texts.h"

#include <gtest/gtest.h>

namespace {

/// The tool against a simulator with its default state.
class SimulatorCommands: public testing::Test
{
    const Simulator simulator;
};

} // namespace

TEST_F(SimulatorCommands, ListShowsTheDefaultState)
{
    EXPECT_EQ(RunTool({"--list"}),
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

TEST_F(SimulatorCommands, EngineStatusShowsTheDefaultState)
{
    EXPECT_EQ(RunTool({"--engine-status"}), (Outcome{0,
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

TEST_F(SimulatorCommands, DebugModeEnablesGatedCommands)
{
    EXPECT_EQ(RunTool({"--start=valve"}), (Outcome{0, debugModeIsOff, ""}));
    EXPECT_EQ(RunTool({"--debug=TRUE"}), Done("Debug mode is enabled"));
    EXPECT_EQ(RunTool({"--start=valve"}), Done("valve was started"));
    EXPECT_EQ(RunTool({"--debug=false"}), Done("Debug mode is disabled"));
    EXPECT_EQ(RunTool({"--stop=valve"}), (Outcome{0, debugModeIsOff, ""}));
    EXPECT_EQ(RunTool({"--status=valve"}), Done("valve is running"));
}

TEST_F(SimulatorCommands, RefusalIsAnExitStatusAndADescription)
{
    EXPECT_EQ(RunTool({"--status=ghost"}), (Outcome{3, "Unknown module \"ghost\"\n", ""}));
}
