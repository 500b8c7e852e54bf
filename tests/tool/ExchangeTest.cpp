// What makes a reply a good one, and what its result code does to the exit status.

#include "tests/support/ScriptedEngine.h"
#include "tests/support/Tool.h"
#include "tests/tool/Texts.h"

#include <gtest/gtest.h>

namespace {

/// A reply to "status" and how the run ends.
struct Row
{
    const char* name;
    const char* reply;
    Outcome outcome;
};

void PrintTo(const Row& row, std::ostream* stream)
{
    *stream << row.reply;
}

const std::string parserError = badReply + "JSON Exception: ";
const std::string scalarRoot = parserError + "Attempt to set value on an empty stack\n";

class Replies: public testing::TestWithParam<Row>
{
};

} // namespace

TEST_P(Replies, EndTheRun)
{
    ScriptedEngine engine{GetParam().reply};

    EXPECT_EQ(RunTool(Words("--status abc")), GetParam().outcome);
}

INSTANTIATE_TEST_SUITE_P(
    Exchange, Replies,
    testing::Values(
        Row{"Success", R"({"description":"d","resultCode":0})", {0, "d\n", ""}},
        Row{"FailureCodePrintsTheReportToo",
            R"({"description":"d","resultCode":3})",
            {3, "d\n", ""}},
        Row{"NumericTextIsConverted", R"({"description":"d","resultCode":"3"})", {3, "d\n", ""}},
        Row{"TrueIsOne", R"({"description":"d","resultCode":true})", {1, "d\n", ""}},
        Row{"FalseIsZero", R"({"description":"d","resultCode":false})", {0, "d\n", ""}},
        Row{"AFractionIsTruncated", R"({"description":"d","resultCode":3.9})", {3, "d\n", ""}},
        Row{"ANegativeFractionIsTruncatedTowardZero",
            R"({"description":"d","resultCode":-0.9})",
            {0, "d\n", ""}},
        Row{"OnlyTheLowEightBitsAreKept",
            R"({"description":"d","resultCode":256})",
            {0, "d\n", ""}},
        Row{"MinusOneIs255", R"({"description":"d","resultCode":-1})", {255, "d\n", ""}},
        Row{"TheLargestCodeIsTaken",
            R"({"description":"d","resultCode":2147483647})",
            {255, "d\n", ""}},
        Row{"TheSmallestCodeIsTaken",
            R"({"description":"d","resultCode":-2147483648})",
            {0, "d\n", ""}},
        Row{"OneMoreThanTheLargestCodeIsRefused",
            R"({"description":"d","resultCode":2147483648})",
            {76, "d\n", badReply + "Out of range: Value too large.\n"}},
        Row{"OneLessThanTheSmallestCodeIsRefused",
            R"({"description":"d","resultCode":-2147483649})",
            {76, "d\n", badReply + "Out of range: Value too small.\n"}},
        Row{"TextThatIsNoNumberIsRefused",
            R"({"description":"d","resultCode":"x"})",
            {76, "d\n", badReply + "Syntax error: Not a valid integer: x\n"}},
        Row{"ANullCodeIsRefused",
            R"({"description":"d","resultCode":null})",
            {76, "d\n", missingValue}},
        Row{"AMissingCodeIsRefusedAfterTheReport",
            R"({"description":"d"})",
            {76, "d\n", missingValue}},
        Row{"AnEmptyObjectLacksEverything", R"({})", {76, "", missingValue}},
        Row{"AMissingDescriptionKeepsTheCodeFromBeingRead",
            R"({"resultCode":3})",
            {76, "", missingValue}},
        Row{"NothingIsNoReply", "", {76, "", emptyReply}},
        Row{"HalfAnObjectIsNoReply", R"({"description":"d",)", {76, "", emptyReply}},
        Row{"TextAloneIsNoObject", R"("text")", {76, "", scalarRoot}},
        Row{"ANumberAloneIsNoObject", "3", {76, "", scalarRoot}},
        Row{"NullAloneIsNoObject", "null", {76, "", scalarRoot}},
        Row{"TextBehindTheObjectIsRefused",
            R"({"description":"d","resultCode":0} x)",
            {76, "", parserError + "Excess characters found after JSON end.\n"}},
        Row{"BlanksBehindTheObjectAreNot",
            "{\"description\":\"d\",\"resultCode\":0} \r\n",
            {0, "d\n", ""}}),
    [](const auto& row) { return row.param.name; });

// The two type names in the text are the compiler's.
TEST(Exchange, AnArrayIsNoObject)
{
    const std::string notAnObject = badReply + "Bad cast exception: Can not convert ";
    ScriptedEngine engine{"[]"};

    const Outcome outcome = RunTool(Words("--status abc"));

    EXPECT_EQ(outcome.status, 76);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err.substr(0, notAnObject.size()), notAnObject);
}

TEST(Exchange, AReportThatFailsHalfwayStopsThereAndKeepsTheCodeFromBeingRead)
{
    ScriptedEngine engine{R"({"safeModeEnabled":false,"resultCode":3})"};

    EXPECT_EQ(RunTool({"--engine-status"}), (Outcome{76,
                                                     "Vantrel status\n"
                                                     "------------------------------\n"
                                                     "Safe mode:     disabled       \n"
                                                     "Debug mode:    ",
                                                     missingValue}));
}

TEST(Exchange, WithAnUnreachableEngineHasNoReplyToComplainAbout)
{
    for (const char* const command : {"--status abc", "--engine-status", "--list"}) {
        EXPECT_EQ(RunTool(Words(command)), (Outcome{69, connectionRefused, ""})) << command;
    }
}
