// The option that gives the simulator a state of the user's own.

#include "tests/sim/e2e/Simulator.h"
#include "tests/sim/e2e/TemporaryFile.h"
#include "tests/support/Tool.h"

#include <gtest/gtest.h>

#include <ostream>

namespace {

Outcome StartWith(const std::string& file)
{
    return Simulator({"--state=" + file}).End();
}

struct BadState
{
    const char* name;
    const char* json;
    const char* complaint;
};

class SimulatorBadState: public testing::TestWithParam<BadState>
{
};

void PrintTo(const BadState& each, std::ostream* stream)
{
    *stream << each.name;
}

std::string NameOf(const testing::TestParamInfo<BadState>& info)
{
    return info.param.name;
}

} // namespace

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

TEST(SimulatorState, FromAFileThatDoesNotExistIsRefused)
{
    EXPECT_EQ(StartWith("/nonexistent/my.json"),
              Refused(66, "/nonexistent/my.json: cannot be read: No such file or directory"));
}

TEST(SimulatorState, FromADirectoryIsRefused)
{
    EXPECT_EQ(StartWith("/"), Refused(66, "/: cannot be read: Is a directory"));
}

TEST(SimulatorState, FromAFileThatDoesNotEndIsRefused)
{
    EXPECT_EQ(StartWith("/dev/zero"), Refused(65, "/dev/zero: longer than 1 MiB"));
}

TEST(SimulatorState, ThatIsReconfiguringStaysSo)
{
    const TemporaryFile file(R"({
        "engine": {"state": "running", "version": "1", "safeModeEnabled": false,
                   "debugModeEnabled": true},
        "services": [],
        "modules": [{"name": "m1", "state": "reconfiguring", "version": "1"}]})");
    const Simulator simulator({"--state=" + file.Path()});

    EXPECT_EQ(RunTool({"--status=m1"}), (Outcome{0, "m1 is reconfiguring\n", ""}));
}

TEST(SimulatorState, FromAFileWithoutANameIsRefused)
{
    EXPECT_EQ(StartWith(""), Refused(66, ": cannot be read: No such file or directory"));
}

TEST_P(SimulatorBadState, IsRefusedInOneLineThatNamesTheFileAndThePlace)
{
    const TemporaryFile file(GetParam().json);

    EXPECT_EQ(StartWith(file.Path()), Refused(65, file.Path() + ": " + GetParam().complaint));
}

INSTANTIATE_TEST_SUITE_P(
    Files, SimulatorBadState,
    testing::Values(
        BadState{"Empty", "", "not valid JSON: unexpected end of text"},
        BadState{"CutOff", R"({"engine": )", "not valid JSON: unexpected end of text"},
        BadState{"Array", "[]", "not a JSON object"}, BadState{"Null", "null", "not a JSON object"},
        BadState{"MissingMember", R"({"services": [], "modules": []})", "\"engine\" is missing"},
        BadState{"UnknownMember", R"({"engines": {}})", "\"engines\" is not known here"},
        BadState{"UnknownMemberOfTwoLines", R"({"a\nb": {}})", "\"a?b\" is not known here"},
        BadState{"WrongTypeOfEngine", R"({"engine": 7})", "engine: not a JSON object"},
        BadState{"WrongTypeOfText", R"({"engine": {"state": true}})",
                 "engine: \"state\" is not a string with at least one character"},
        BadState{"WrongTypeOfFlag",
                 R"({"engine": {"state": "running", "version": "1", "safeModeEnabled": "no"}})",
                 "engine: \"safeModeEnabled\" is neither true nor false"},
        BadState{"WrongTypeOfTable",
                 R"({"engine": {"state": "running", "version": "1", "safeModeEnabled": false,
                     "debugModeEnabled": false}, "services": {}})",
                 "\"services\" is not an array"}),
    NameOf);
