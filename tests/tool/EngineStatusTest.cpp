// The report of --engine-status. What it makes of a value that is missing or of another type is in
// ReplyMembersTest.cpp.

#include "tests/support/ScriptedEngine.h"
#include "tests/support/Tool.h"
#include "tests/tool/Texts.h"

#include <gtest/gtest.h>

namespace {

Outcome StatusOf(const std::string& reply)
{
    ScriptedEngine engine{reply.c_str()};
    return RunTool({"--engine-status"});
}

} // namespace

TEST(EngineStatus, ShowsSevenLinesAndAnEmptyOne)
{
    ScriptedEngine engine{ordinaryStatus};

    EXPECT_EQ(RunTool({"--engine-status"}), (Outcome{0, ordinaryStatusReport, ""}));

    EXPECT_EQ(engine.Requests(), std::vector<std::string>{engineStatusRequest});
}

TEST(EngineStatus, ShowsBuildInfoOfAnyTypeAndSaysWhereThereIsNone)
{
    const std::string line = "Build info:    ";
    std::string report = ordinaryStatusReport;
    report.erase(report.find(line));
    const auto statusWith = [](const std::string& build) {
        return StatusOf(R"({"safeModeEnabled":false,"debugModeEnabled":true,"state":"running",)"
                        R"("version":"1.0","resultCode":0)" +
                        build + "}");
    };

    EXPECT_EQ(statusWith(""), (Outcome{0, report + line + "<not available>\n\n", ""}));
    EXPECT_EQ(statusWith(R"(,"build":null)"),
              (Outcome{0, report + line + "<not available>\n\n", ""}));
    EXPECT_EQ(statusWith(R"(,"build":"")"),
              (Outcome{0, report + line + "               \n\n", ""}));
    EXPECT_EQ(statusWith(R"(,"build":1.5)"),
              (Outcome{0, report + line + "1.5            \n\n", ""}));
}

TEST(EngineStatus, WritesLongTextsWhole)
{
    EXPECT_EQ(StatusOf(R"({"safeModeEnabled":false,"debugModeEnabled":true,)"
                       R"("state":"waiting for the network","version":"1.0-rc4-with-a-tail",)"
                       R"("build":"nightly build of a branch","resultCode":0})"),
              (Outcome{0,
                       "Vantrel status\n"
                       "------------------------------\n"
                       "Safe mode:     disabled       \n"
                       "Debug mode:    enabled        \n"
                       "State:         waiting for the network\n"
                       "Version:       1.0-rc4-with-a-tail\n"
                       "Build info:    nightly build of a branch\n"
                       "\n",
                       ""}));
}
