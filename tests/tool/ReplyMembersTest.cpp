// What a report makes of a member of its reply that is missing or of another type. What is not a
// member's own type goes through POCO's conversions, whose oddities are recorded here as they are.

#include "tests/support/ScriptedEngine.h"
#include "tests/support/Tool.h"
#include "tests/tool/Texts.h"

#include <gtest/gtest.h>

#include <iterator>
#include <regex>
#include <string>

namespace {

/// What a value is as a result code: an exit status, or refused for a reason.
struct Code
{
    int status;
    std::string reason;
};

const Code tooLarge{76, "Out of range: " + poco.tooLarge};
const Code tooSmall{76, "Out of range: " + poco.tooSmall};
const Code badCast{76, "Bad cast exception"};

Code Taken(int status)
{
    return {status, ""};
}

Code NoInteger(const std::string& text)
{
    return {76, "Syntax error: Not a valid integer" + (text.empty() ? "" : ": " + text)};
}

const std::string textWithNul("a\0b", poco.textsEndAtNul ? 1 : 3);

constexpr bool yes = true;
constexpr bool no = false;

struct Value
{
    const char* name;
    const char* json;
    std::string text;
    bool flag;
    Code code;
};

// clang-format off
const Value valueTable[] = {
    {"True",              "true",                 "true",                      yes, Taken(1)},
    {"False",             "false",                "false",                     no,  Taken(0)},

    {"EmptyText",         R"("")",                "",                          no,  NoInteger("")},
    {"Text",              R"("some text")",       "some text",                 yes, NoInteger("some text")},
    {"TextWithNewline",   R"("two\nlines")",       "two\nlines",                yes, NoInteger("two\nlines")},
    {"TextTrue",          R"("True")",            "True",                      yes, NoInteger("True")},
    {"TextFalse",         R"("False")",           "False",                     no,  NoInteger("False")},
    {"TextZero",          R"("0")",               "0",                         no,  Taken(0)},
    {"TextSeven",         R"("7")",               "7",                         yes, Taken(7)},
    {"TextPlusSeven",     R"("+7")",              "+7",                        yes, Taken(7)},
    {"TextMinusSeven",    R"("-7")",              "-7",                        yes, Taken(249)},
    {"TextFraction",      R"("7.5")",             "7.5",                       yes, NoInteger("7.5")},
    {"TextSpaced",        R"(" 7 ")",             " 7 ",                       yes, NoInteger(" 7 ")},
    {"TextHexadecimal",   R"("0x10")",            "0x10",                      yes, NoInteger("0x10")},
    {"TextPastCode",      R"("2147483648")",      "2147483648",                yes, NoInteger("2147483648")},
    {"TextWithEscapes",   R"("a\tb\u00e9\"")",    "a\tb\xc3\xa9\"",            yes, NoInteger("a\tb\xc3\xa9\"")},
    {"TextSurrogatePair", R"("\ud83d\ude00")",    "\xf0\x9f\x98\x80",          yes, NoInteger("\xf0\x9f\x98\x80")},
    {"TextInUtf8",        "\"\xc3\xa9\xe2\x82\xac\"", "\xc3\xa9\xe2\x82\xac",   yes, NoInteger("\xc3\xa9\xe2\x82\xac")},
    {"TextWithNul",       R"("a\u0000b")",        textWithNul,                 yes, NoInteger(textWithNul)},
    {"TextWithEscape",    R"("\u001b[31mred")",   "\033[31mred",               yes, NoInteger("\033[31mred")},

    {"Zero",              "0",                    "0",                         no,  Taken(0)},
    {"MinusZero",         "-0",                   "0",                         no,  Taken(0)},
    {"Seven",             "7",                    "7",                         yes, Taken(7)},
    {"Code255",           "255",                  "255",                       yes, Taken(255)},
    {"LargestCode",       "2147483647",           "2147483647",                yes, Taken(255)},
    {"PastLargestCode",   "2147483648",           "2147483648",                yes, tooLarge},
    {"SmallestCode",      "-2147483648",          "-2147483648",               yes, Taken(0)},
    {"PastSmallestCode",  "-2147483649",          "-2147483649",               yes, tooSmall},
    {"Largest",           "9223372036854775807",  "9223372036854775807",       yes, tooLarge},
    {"PastLargest",       "9223372036854775808",  "9223372036854775808",       yes, tooLarge},
    {"LargestUnsigned",   "18446744073709551615", "18446744073709551615",      yes, tooLarge},
    {"Smallest",          "-9223372036854775808", "-9223372036854775808",      yes, tooSmall},

    {"Half",              "0.5",                  "0.5",                       yes, Taken(0)},
    {"Fraction",          "3.75",                 "3.75",                      yes, Taken(3)},
    {"MinusFraction",     "-3.75",                "-3.75",                     yes, Taken(253)},
    {"ZeroFraction",      "0.0",                  "0",                         no,  Taken(0)},
    {"Exponent",          "1e2",                  "100",                       yes, Taken(100)},
    {"TinyExponent",      "1e-400",               "0",                         no,  Taken(0)},
    {"PastCodeFraction",  "2147483648.5",         "2147483648.5",              yes, tooLarge},

    {"EmptyArray",        "[]",                   poco.emptyArray,             no,  badCast},
    {"Array",             "[1]",                  poco.array,                  yes, badCast},
    {"EmptyObject",       "{}",                   poco.emptyObject,            no,  badCast},
    {"Object",            R"({"a":1})",           poco.object,                 yes, badCast},
};
// clang-format on

std::string Padded(std::string text)
{
    text.resize(std::max<std::size_t>(text.size(), 15), ' ');
    return text;
}

// The status report up to a value, and from its next line on.
const std::string safeMode = "Vantrel status\n------------------------------\nSafe mode:     ";
const std::string debugMode = safeMode + "disabled       \nDebug mode:    ";
const std::string state = debugMode + "disabled       \nState:         ";
const std::string version = state + "s              \nVersion:       ";
const std::string fromBuild = "Build info:    <not available>\n\n";
const std::string fromVersion = "Version:       v              \n" + fromBuild;
const std::string fromState = "State:         s              \n" + fromVersion;
const std::string fromDebugMode = "Debug mode:    disabled       \n" + fromState;
const std::string wholeStatus = safeMode + "disabled       \n" + fromDebugMode;

const std::string services = "SERVICE NAME             STATE          VERSION        \n"
                             "-------------------------------------------------------\n";
const std::string watchedServices =
    "SERVICE NAME             STATE          HEARTBEAT      VERSION        \n"
    "----------------------------------------------------------------------\n"
    "a                        s              yes            v              \n";
const std::string noModules = "\n"
                              "MODULE NAME              STATE          VERSION        \n"
                              "-------------------------------------------------------\n"
                              "None are loaded!\n\n";

struct Member
{
    const char* name;
    const char* commandLine;
    const char* key;
    const char* reply; // with "@" for the member and the comma before it
    std::string printedBefore;
    const char* value; // of another type than the member's
    Outcome converted; // how a run with that value ends
};

// clang-format off
// A result code of 3 is not looked at where the member fails.
const Member memberTable[] = {
    {"Description", "--update", "description", R"({"resultCode":3@})",
     "", "12", {3, "12\n", ""}},
    {"DebugModeOfTheQuery", "--start abc", "debugModeEnabled", R"({"resultCode":3@})",
     debugModeIsOff, "1", {0, "ok\n", ""}},

    {"SafeMode", "--engine-status", "safeModeEnabled",
     R"({"debugModeEnabled":false,"state":"s","version":"v","resultCode":3@})",
     safeMode, "1", {3, safeMode + "enabled        \n" + fromDebugMode, ""}},
    {"DebugMode", "--engine-status", "debugModeEnabled",
     R"({"safeModeEnabled":false,"state":"s","version":"v","resultCode":3@})",
     debugMode, "1", {3, debugMode + "enabled        \n" + fromState, ""}},
    {"EngineState", "--engine-status", "state",
     R"({"safeModeEnabled":false,"debugModeEnabled":false,"version":"v","resultCode":3@})",
     state, "12", {3, state + "12             \n" + fromVersion, ""}},
    {"EngineVersion", "--engine-status", "version",
     R"({"safeModeEnabled":false,"debugModeEnabled":false,"state":"s","resultCode":3@})",
     version, "12", {3, version + "12             \n" + fromBuild, ""}},

    {"DescriptionOfARefusedList", "--list", "description", R"({"resultCode":3@})",
     "", "12", {3, "", "12\n"}},
    {"Name", "--list", "name",
     R"({"resultCode":0,"modules":[],"services":[{"state":"s","version":"v"@}]})",
     services, "12",
     {0, services + "12                       s              v              \n" + noModules, ""}},
    {"State", "--list", "state",
     R"({"resultCode":0,"modules":[],"services":[{"name":"n","version":"v"@}]})",
     services + "n                        ", "12",
     {0, services + "n                        12             v              \n" + noModules, ""}},
    {"Version", "--list", "version",
     R"({"resultCode":0,"modules":[],"services":[{"name":"n","state":"s"@}]})",
     services + "n                        s              ", "12",
     {0, services + "n                        s              12             \n" + noModules, ""}},
    {"Monitored", "--list", "monitored",
     R"({"resultCode":0,"modules":[],"services":[
         {"name":"a","state":"s","monitored":true,"version":"v"},
         {"name":"n","state":"s","version":"v"@}]})",
     watchedServices + "n                        s              ", "2",
     {0, watchedServices + "n                        s              yes            v              \n" +
         noModules, ""}},
};

const Member resultCodeTable[] = {
    {"Command", "--status abc", "resultCode", R"({"description":"d"@})",
     "d\n", R"("3")", {3, "d\n", ""}},
    {"Status", "--engine-status", "resultCode",
     R"({"safeModeEnabled":false,"debugModeEnabled":false,"state":"s","version":"v"@})",
     wholeStatus, R"("3")", {3, wholeStatus, ""}},
    {"List", "--list", "resultCode", R"({"description":"d","services":[],"modules":[]@})",
     "", R"("3")", {3, "", "d\n"}},
};
// clang-format on

/// A status of the engine with the value as a flag, a text and the result code, and its report.
std::string StatusWith(const std::string& json)
{
    return R"({"debugModeEnabled":false,"version":"v","safeModeEnabled":)" + json + R"(,"state":)" +
           json + R"(,"resultCode":)" + json + "}";
}

std::string ReportOf(bool flag, const std::string& text)
{
    return safeMode + (flag ? "enabled        \n" : "disabled       \n") +
           "Debug mode:    disabled       \nState:         " + Padded(text) + "\n" + fromVersion;
}

/// An outcome without what POCO 1.14 adds to a range error: types, values and a line of its source.
Outcome WithoutDetails(Outcome outcome)
{
    outcome.err = std::regex_replace(outcome.err, std::regex(R"( \(\(.*\) @ \S+)"), "");
    return outcome;
}

/// Runs the command with the reply that has the value, if there is one, as the member.
Outcome RunWith(const Member& member, const char* value)
{
    std::string reply = member.reply;
    reply.replace(reply.find('@'), 1,
                  value == nullptr ? "" : std::string(",\"") + member.key + "\":" + value);
    ScriptedEngine engine{reply.c_str(), accepted};
    return RunTool(Words(member.commandLine));
}

class ConvertedValue: public testing::TestWithParam<const Value*>
{
};
class ReplyMember: public testing::TestWithParam<const Member*>
{
};
class UnusableResultCode: public testing::TestWithParam<const Member*>
{
};

const auto nameOfRow = [](const auto& row) {
    return row.param->name;
};

} // namespace

TEST_P(ConvertedValue, IsShownAsFlagAndTextAndTakenAsResultCode)
{
    const auto& [name, json, text, flag, code] = *GetParam();
    ScriptedEngine engine{StatusWith(json).c_str()};

    const std::string err = code.reason.empty() ? "" : badReply + code.reason + "\n";
    EXPECT_EQ(WithoutDetails(RunTool({"--engine-status"})),
              (Outcome{code.status, ReportOf(flag, text), err}));
}

INSTANTIATE_TEST_SUITE_P(Values, ConvertedValue,
                         testing::Range(std::begin(valueTable), std::end(valueTable)), nameOfRow);

TEST(TwoToThe64, IsZeroOrMakesTheReplyUnreadable)
{
    const std::string number = "18446744073709551616";
    ScriptedEngine engine{StatusWith(number).c_str()};

    const std::string err =
        badReply + "Syntax error: Not a valid unsigned integer: " + number + "\n";
    EXPECT_EQ(RunTool({"--engine-status"}),
              (poco.twoToThe64IsZero ? Outcome{0, ReportOf(no, "0"), ""} : Outcome{76, "", err}));
}

TEST_P(ReplyMember, EndsTheReportWhereItIsMissing)
{
    const Outcome failed{76, GetParam()->printedBefore, missingValue};

    EXPECT_EQ(RunWith(*GetParam(), nullptr), failed);
    EXPECT_EQ(RunWith(*GetParam(), "null"), failed);
}

TEST_P(ReplyMember, IsConverted)
{
    EXPECT_EQ(RunWith(*GetParam(), GetParam()->value), GetParam()->converted);
}

INSTANTIATE_TEST_SUITE_P(Members, ReplyMember,
                         testing::Range(std::begin(memberTable), std::end(memberTable)), nameOfRow);
INSTANTIATE_TEST_SUITE_P(Codes, ReplyMember,
                         testing::Range(std::begin(resultCodeTable), std::end(resultCodeTable)),
                         nameOfRow);

TEST_P(UnusableResultCode, IsRefused)
{
    EXPECT_EQ(RunWith(*GetParam(), R"("x")"),
              (Outcome{76, GetParam()->printedBefore, badReply + NoInteger("x").reason + "\n"}));
}

INSTANTIATE_TEST_SUITE_P(Codes, UnusableResultCode,
                         testing::Range(std::begin(resultCodeTable), std::end(resultCodeTable)),
                         nameOfRow);
