// The option that gives the simulator a state of the user's own.

#include "tests/sim/e2e/Simulator.h"
#include "tests/sim/e2e/TemporaryFile.h"
#include "tests/support/Tool.h"

#include <gtest/gtest.h>

TEST(SimulatorState, FromAFileIsWhatTheToolShows)
{
    const TemporaryFile file(R"({
        "engine": {"state": "degraded", "version": "9.1", "safeModeEnabled": true,
                   "debugModeEnabled": true},
        "services": [{"name": "s1", "state": "odd", "version": "1.0", "monitored": true}],
        "modules": []})");
    const Simulator simulator({"--state=" + file.Path()});

    EXPECT_EQ(RunTool({"--engine-status"}), (Outcome{0,
                                                     "Vantrel status\n"
                                                     "------------------------------\n"
                                                     "Safe mode:     enabled        \n"
                                                     "Debug mode:    enabled        \n"
                                                     "State:         degraded       \n"
                                                     "Version:       9.1            \n"
                                                     "Build info:    <not available>\n"
                                                     "\n",
                                                     ""}));
    EXPECT_EQ(RunTool({"--list"}),
              (Outcome{0,
                       "SERVICE NAME             STATE          HEARTBEAT      VERSION        \n"
                       "----------------------------------------------------------------------\n"
                       "s1                       odd            yes            1.0            \n"
                       "\n"
                       "MODULE NAME              STATE          VERSION        \n"
                       "-------------------------------------------------------\n"
                       "None are loaded!\n"
                       "\n",
                       ""}));
}

TEST(SimulatorState, FromAFileWithoutANameIsRefused)
{
    EXPECT_EQ(Simulator({"--state="}).End(),
              Refused(66, ": cannot be read: No such file or directory"));
}

TEST(SimulatorState, WithAMistakeIsRefusedInOneLineThatNamesTheFileAndThePlace)
{
    const TemporaryFile file(R"({"engine": 7})");

    EXPECT_EQ(Simulator({"--state=" + file.Path()}).End(),
              Refused(65, file.Path() + ": engine: not a JSON object"));
}
