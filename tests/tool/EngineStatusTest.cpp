// The status report, and how the debug-mode query reads the same reply.

#include "tests/support/ScriptedEngine.h"
#include "tests/support/Tool.h"
#include "tests/tool/Texts.h"

#include <gtest/gtest.h>

namespace {

Outcome StatusOf(const char* reply)
{
    ScriptedEngine engine{reply};
    return RunTool({"--engine-status"});
}

/// The report's lines up to the one with the given number; the rest is not printed.
std::string Until(int line, const std::string& lastLabel)
{
    std::size_t end = 0;
    for (int i = 1; i < line; ++i) {
        end = ordinaryStatusReport.find('\n', end) + 1;
    }
    return ordinaryStatusReport.substr(0, end) + lastLabel;
}

} // namespace

TEST(EngineStatus, ShowsSevenLinesAndAnEmptyOne)
{
    ScriptedEngine engine{ordinaryStatus};

    EXPECT_EQ(RunTool({"--engine-status"}), (Outcome{0, ordinaryStatusReport, ""}));

    EXPECT_EQ(engine.Requests(), std::vector<std::string>{engineStatusRequest});
}

TEST(EngineStatus, ShowsTheOtherValueOfEachFlag)
{
    EXPECT_EQ(StatusOf(R"({"safeModeEnabled":true,"debugModeEnabled":false,)"
                       R"("state":"failed","version":"2","build":"","resultCode":0})"),
              (Outcome{0,
                       "Vantrel status\n"
                       "------------------------------\n"
                       "Safe mode:     enabled        \n"
                       "Debug mode:    disabled       \n"
                       "State:         failed         \n"
                       "Version:       2              \n"
                       "Build info:                   \n"
                       "\n",
                       ""}));
}

TEST(EngineStatus, SaysThatBuildInfoIsNotAvailableWithoutPadding)
{
    const std::string report = Until(7, "Build info:    <not available>\n\n");

    EXPECT_EQ(StatusOf(R"({"safeModeEnabled":false,"debugModeEnabled":true,)"
                       R"("state":"running","version":"1.0","resultCode":0})"),
              (Outcome{0, report, ""}));
    EXPECT_EQ(StatusOf(R"({"safeModeEnabled":false,"debugModeEnabled":true,)"
                       R"("state":"running","version":"1.0","build":null,"resultCode":0})"),
              (Outcome{0, report, ""}));
}

TEST(EngineStatus, WritesLongTextsWhole)
{
    EXPECT_EQ(StatusOf(R"({"safeModeEnabled":false,"debugModeEnabled":true,)"
                       R"("state":"waiting for the network","version":"1.0-rc4-with-a-tail",)"
                       R"("build":"nightly build of a branch","resultCode":0})"),
              (Outcome{0,
                       Until(5, "State:         waiting for the network\n"
                                "Version:       1.0-rc4-with-a-tail\n"
                                "Build info:    nightly build of a branch\n"
                                "\n"),
                       ""}));
}

TEST(EngineStatus, ConvertsFlagsOfAnotherType)
{
    for (const char* const flag : {"\"true\"", "1", "2.5", "\"yes\"", "-1"}) {
        const std::string reply = std::string(R"({"safeModeEnabled":)") + flag +
                                  R"(,"debugModeEnabled":true,"state":"s","version":"v"})";

        EXPECT_EQ(StatusOf(reply.c_str()).out.substr(46, 31), "Safe mode:     enabled        \n")
            << flag;
    }
    for (const char* const flag : {"\"false\"", "0", "\"FALSE\"", "\"0\"", "\"\""}) {
        const std::string reply = std::string(R"({"safeModeEnabled":)") + flag +
                                  R"(,"debugModeEnabled":true,"state":"s","version":"v"})";

        EXPECT_EQ(StatusOf(reply.c_str()).out.substr(46, 31), "Safe mode:     disabled       \n")
            << flag;
    }
}

TEST(EngineStatus, ConvertsTextsOfAnotherType)
{
    EXPECT_EQ(StatusOf(R"({"safeModeEnabled":false,"debugModeEnabled":true,)"
                       R"("state":7,"version":1.5,"build":true,"resultCode":0})"),
              (Outcome{0,
                       Until(5, "State:         7              \n"
                                "Version:       1.5            \n"
                                "Build info:    true           \n"
                                "\n"),
                       ""}));
}

TEST(EngineStatus, EndsAtTheLabelOfAMissingValue)
{
    EXPECT_EQ(StatusOf(R"({"debugModeEnabled":true,"state":"running","version":"1.0"})"),
              (Outcome{76, Until(3, "Safe mode:     "), missingValue}));
    EXPECT_EQ(StatusOf(R"({"safeModeEnabled":false,"state":"running","version":"1.0"})"),
              (Outcome{76, Until(4, "Debug mode:    "), missingValue}));
    EXPECT_EQ(StatusOf(R"({"safeModeEnabled":false,"debugModeEnabled":true,"version":"1.0"})"),
              (Outcome{76, Until(5, "State:         "), missingValue}));
    EXPECT_EQ(StatusOf(R"({"safeModeEnabled":false,"debugModeEnabled":true,"state":"running"})"),
              (Outcome{76, Until(6, "Version:       "), missingValue}));
}

TEST(EngineStatus, TreatsNullAsMissing)
{
    EXPECT_EQ(StatusOf(R"({"safeModeEnabled":false,"debugModeEnabled":true,"state":"running",)"
                       R"("version":null,"resultCode":0})"),
              (Outcome{76, Until(6, "Version:       "), missingValue}));
}

TEST(EngineStatus, PrintsTheReportOfAFailedRequestAndEndsWithItsCode)
{
    EXPECT_EQ(StatusOf(R"({"safeModeEnabled":false,"debugModeEnabled":true,)"
                       R"("state":"running","version":"1.0","build":"x","resultCode":4})"),
              (Outcome{4, ordinaryStatusReport, ""}));
}

TEST(EngineStatus, WithoutAnEnginePrintsNoReport)
{
    EXPECT_EQ(RunTool({"-e"}), (Outcome{69, connectionRefused, ""}));
}

TEST(EngineStatus, OfAReplyThatIsNoObjectPrintsNoReport)
{
    EXPECT_EQ(StatusOf(""), (Outcome{76, "", emptyReply}));
}

TEST(DebugModeQuery, IgnoresTheResultCodeOfItsReply)
{
    ScriptedEngine engine{R"({"debugModeEnabled":true,"resultCode":99})",
                          R"({"description":"started","resultCode":0})"};

    EXPECT_EQ(RunTool(Words("--start abc")), (Outcome{0, "started\n", ""}));
}

TEST(DebugModeQuery, NeedsNoOtherMember)
{
    ScriptedEngine engine{R"({"debugModeEnabled":true})",
                          R"({"description":"started","resultCode":0})"};

    EXPECT_EQ(RunTool(Words("--start abc")), (Outcome{0, "started\n", ""}));
}

TEST(DebugModeQuery, ConvertsAFlagOfAnotherType)
{
    ScriptedEngine engine{R"({"debugModeEnabled":"True"})",
                          R"({"description":"started","resultCode":0})"};

    EXPECT_EQ(RunTool(Words("--start abc")), (Outcome{0, "started\n", ""}));
}

TEST(DebugModeQuery, TreatsNullAsMissing)
{
    ScriptedEngine engine{R"({"debugModeEnabled":null})"};

    EXPECT_EQ(RunTool(Words("--start abc")), (Outcome{76, debugModeIsOff, missingValue}));
}

TEST(DebugModeQuery, OfAnArrayOrAnEmptyReplyAnswersNo)
{
    ScriptedEngine engine{"", "[true]"};

    EXPECT_EQ(RunTool(Words("--start abc")), (Outcome{76, debugModeIsOff, emptyReply}));

    const Outcome array = RunTool(Words("--start abc"));
    EXPECT_EQ(array.status, 76);
    EXPECT_EQ(array.out, debugModeIsOff);
    EXPECT_EQ(array.err.find(badReply + "Bad cast exception: Can not convert "), 0U) << array.err;
}

TEST(DebugModeQuery, IsMadeAnewForEveryCommand)
{
    ScriptedEngine engine{debugModeOn, R"({"description":"started","resultCode":0})", debugModeOff};

    EXPECT_EQ(RunTool(Words("--start abc")), (Outcome{0, "started\n", ""}));
    EXPECT_EQ(RunTool(Words("--start abc")), (Outcome{0, debugModeIsOff, ""}));
}
