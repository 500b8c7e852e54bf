// Every kind of JSON value at every member that a report reads.
//
// One table says what each value is as a text, as a flag and as a result code; the other where each
// member stands in its reply and in the report. What is not a member's own type goes through POCO's
// conversions, whose oddities are recorded here as they are.

#include "tests/support/ScriptedEngine.h"
#include "tests/support/Tool.h"
#include "tests/tool/Texts.h"

#include <gtest/gtest.h>

#include <iterator>
#include <ostream>
#include <string>
#include <tuple>
#include <vector>

namespace {

/// What a value is to a member of some kind: something to show, or refused for a reason.
struct Reading
{
    std::string shown;
    std::string reason;
};

Reading Shown(std::string text)
{
    return {std::move(text), ""};
}
Reading Refused(std::string reason)
{
    return {"", std::move(reason)};
}

const Reading yes = Shown("yes");
const Reading no = Shown("no");
const Reading missing = Refused("Invalid access: Can not convert empty value.");
const Reading tooLarge = Refused("Out of range: Value too large.");
const Reading tooSmall = Refused("Out of range: Value too small.");
const Reading badCast = Refused("Bad cast exception");

Reading NoInteger(const std::string& text)
{
    return Refused("Syntax error: Not a valid integer" + (text.empty() ? "" : ": " + text));
}

struct Value
{
    const char* name;
    const char* json; // nullptr: the member is absent
    Reading text;
    Reading flag;
    Reading code;
};

void PrintTo(const Value* value, std::ostream* stream)
{
    *stream << value->name;
}

// clang-format off
const Value valueTable[] = {
    {"Absent",           nullptr,                missing,                       missing, missing},
    {"Null",             "null",                 missing,                       missing, missing},
    {"True",             "true",                 Shown("true"),                 yes, Shown("1")},
    {"False",            "false",                Shown("false"),                no,  Shown("0")},

    {"EmptyText",        R"("")",                Shown(""),                     no,  NoInteger("")},
    {"Text",             R"("some text")",       Shown("some text"),            yes, NoInteger("some text")},
    {"LongText",         R"("more than the twenty-five of a field")",
                                                 Shown("more than the twenty-five of a field"),
                                                 yes, NoInteger("more than the twenty-five of a field")},
    {"TextTrue",         R"("True")",            Shown("True"),                 yes, NoInteger("True")},
    {"TextFalse",        R"("False")",           Shown("False"),                no,  NoInteger("False")},
    {"TextZero",         R"("0")",               Shown("0"),                    no,  Shown("0")},
    {"TextSeven",        R"("7")",               Shown("7"),                    yes, Shown("7")},
    {"TextPlusSeven",    R"("+7")",              Shown("+7"),                   yes, Shown("7")},
    {"TextMinusSeven",   R"("-7")",              Shown("-7"),                   yes, Shown("-7")},
    {"TextFraction",     R"("7.5")",             Shown("7.5"),                  yes, NoInteger("7.5")},
    {"TextSpaced",       R"(" 7 ")",             Shown(" 7 "),                  yes, NoInteger(" 7 ")},
    {"TextHexadecimal",  R"("0x10")",            Shown("0x10"),                 yes, NoInteger("0x10")},
    {"TextPastCode",     R"("2147483648")",      Shown("2147483648"),           yes, NoInteger("2147483648")},
    {"TextWithEscapes",  R"("a\tb\u00e9\"")",    Shown("a\tb\xc3\xa9\""),       yes, NoInteger("a\tb\xc3\xa9\"")},
    {"TextWithNul",      R"("a\u0000b")",        Shown(std::string("a\0b", 3)), yes, NoInteger(std::string("a\0b", 3))},
    {"TextWithEscape",   R"("\u001b[31mred")",   Shown("\033[31mred"),          yes, NoInteger("\033[31mred")},

    {"Zero",             "0",                    Shown("0"),                    no,  Shown("0")},
    {"MinusZero",        "-0",                   Shown("0"),                    no,  Shown("0")},
    {"Seven",            "7",                    Shown("7"),                    yes, Shown("7")},
    {"MinusOne",         "-1",                   Shown("-1"),                   yes, Shown("-1")},
    {"Code255",          "255",                  Shown("255"),                  yes, Shown("255")},
    {"Code256",          "256",                  Shown("256"),                  yes, Shown("256")},
    {"LargestCode",      "2147483647",           Shown("2147483647"),           yes, Shown("2147483647")},
    {"PastLargestCode",  "2147483648",           Shown("2147483648"),           yes, tooLarge},
    {"SmallestCode",     "-2147483648",          Shown("-2147483648"),          yes, Shown("-2147483648")},
    {"PastSmallestCode", "-2147483649",          Shown("-2147483649"),          yes, tooSmall},
    {"Largest",          "9223372036854775807",  Shown("9223372036854775807"),  yes, tooLarge},
    {"PastLargest",      "9223372036854775808",  Shown("9223372036854775808"),  yes, tooLarge},
    {"LargestUnsigned",  "18446744073709551615", Shown("18446744073709551615"), yes, tooLarge},
    {"PastUnsigned",     "18446744073709551616", Shown("0"),                    no,  Shown("0")},
    {"Smallest",         "-9223372036854775808", Shown("-9223372036854775808"), yes, tooSmall},

    {"Half",             "0.5",                  Shown("0.5"),                  yes, Shown("0")},
    {"Fraction",         "3.75",                 Shown("3.75"),                 yes, Shown("3")},
    {"MinusFraction",    "-3.75",                Shown("-3.75"),                yes, Shown("-3")},
    {"ZeroFraction",     "0.0",                  Shown("0"),                    no,  Shown("0")},
    {"Exponent",         "1e2",                  Shown("100"),                  yes, Shown("100")},
    {"TinyExponent",     "1e-400",               Shown("0"),                    no,  Shown("0")},
    {"PastCodeFraction", "2147483648.5",         Shown("2147483648.5"),         yes, tooLarge},

    {"EmptyArray",       "[]",                   Shown("[\n\n]"),               no,  badCast},
    {"Array",            "[1]",                  Shown("[\n  1\n]"),            yes, badCast},
    {"EmptyObject",      "{}",                   Shown("{\n}"),                 no,  badCast},
    {"Object",           R"({"a":1})",           Shown("{\n  \"a\": 1\n}"),     yes, badCast},
};
// clang-format on

struct Member
{
    const char* name;
    Reading Value::*kind;
    const char* commandLine;
    /// The reply, with "@" for the member and the comma before it.
    const char* key;
    const char* reply;
    /// How the run ends for a value that can be read, and what is printed before one that cannot.
    Outcome (*read)(const std::string& shown);
    const char* printedBefore;
    std::vector<const char*> repliesBefore;
};

void PrintTo(const Member* member, std::ostream* stream)
{
    *stream << member->name;
}

std::string Padded(std::string text, std::size_t width)
{
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

/// What the operating system keeps of a result code.
int Status(const std::string& code)
{
    return std::stoi(code) & 0xff;
}

std::string OnOff(const std::string& flag)
{
    return flag == "yes" ? "enabled        \n" : "disabled       \n";
}

// The status report, cut where a value is read.
#define TITLE "Vantrel status\n------------------------------\n"
#define SAFE_LINE "Safe mode:     disabled       \n"
#define DEBUG_LINE "Debug mode:    disabled       \n"
#define STATE_LINE "State:         s              \n"
#define VERSION_LINE "Version:       v              \n"
#define BUILD_LINE "Build info:    <not available>\n\n"

// The services table, cut where a value is read, and the empty table behind it.
#define SERVICES                                                                                   \
    "SERVICE NAME             STATE          VERSION        \n"                                    \
    "-------------------------------------------------------\n"
#define WATCHED_SERVICES                                                                           \
    "SERVICE NAME             STATE          HEARTBEAT      VERSION        \n"                     \
    "----------------------------------------------------------------------\n"
#define NO_MODULES                                                                                 \
    "\n"                                                                                           \
    "MODULE NAME              STATE          VERSION        \n"                                    \
    "-------------------------------------------------------\n"                                    \
    "None are loaded!\n\n"

Outcome Prints(const std::string& report)
{
    return {0, report, ""};
}

// clang-format off
const Member memberTable[] = {
    {"Description", &Value::text, "--update", "description", R"({"resultCode":0@})",
     [](auto& text) { return Prints(text + "\n"); }, "", {}},
    {"ResultCodeOfACommand", &Value::code, "--status abc", "resultCode", R"({"description":"d"@})",
     [](auto& code) { return Outcome{Status(code), "d\n", ""}; }, "d\n", {}},

    {"SafeMode", &Value::flag, "--engine-status", "safeModeEnabled",
     R"({"debugModeEnabled":false,"state":"s","version":"v","resultCode":0@})",
     [](auto& flag) { return Prints(TITLE "Safe mode:     " + OnOff(flag) +
                                    DEBUG_LINE STATE_LINE VERSION_LINE BUILD_LINE); },
     TITLE "Safe mode:     ", {}},
    {"DebugMode", &Value::flag, "--engine-status", "debugModeEnabled",
     R"({"safeModeEnabled":false,"state":"s","version":"v","resultCode":0@})",
     [](auto& flag) { return Prints(TITLE SAFE_LINE "Debug mode:    " + OnOff(flag) +
                                    STATE_LINE VERSION_LINE BUILD_LINE); },
     TITLE SAFE_LINE "Debug mode:    ", {}},
    {"EngineState", &Value::text, "--engine-status", "state",
     R"({"safeModeEnabled":false,"debugModeEnabled":false,"version":"v","resultCode":0@})",
     [](auto& text) { return Prints(TITLE SAFE_LINE DEBUG_LINE "State:         " +
                                    Padded(text, 15) + "\n" VERSION_LINE BUILD_LINE); },
     TITLE SAFE_LINE DEBUG_LINE "State:         ", {}},
    {"EngineVersion", &Value::text, "--engine-status", "version",
     R"({"safeModeEnabled":false,"debugModeEnabled":false,"state":"s","resultCode":0@})",
     [](auto& text) { return Prints(TITLE SAFE_LINE DEBUG_LINE STATE_LINE "Version:       " +
                                    Padded(text, 15) + "\n" BUILD_LINE); },
     TITLE SAFE_LINE DEBUG_LINE STATE_LINE "Version:       ", {}},
    {"ResultCodeOfTheStatus", &Value::code, "--engine-status", "resultCode",
     R"({"safeModeEnabled":false,"debugModeEnabled":false,"state":"s","version":"v"@})",
     [](auto& code) { return Outcome{Status(code), TITLE SAFE_LINE DEBUG_LINE STATE_LINE
                                     VERSION_LINE BUILD_LINE, ""}; },
     TITLE SAFE_LINE DEBUG_LINE STATE_LINE VERSION_LINE BUILD_LINE, {}},

    {"DebugModeOfTheQuery", &Value::flag, "--start abc", "debugModeEnabled", R"({"resultCode":1@})",
     [](auto& flag) { return Prints(flag == "yes" ? "started\n" : debugModeIsOff); },
     "Debug mode is disabled, set debugmode first with -d option\n", {}},
    {"ResultCodeOfAGatedCommand", &Value::code, "--start abc", "resultCode",
     R"({"description":"d"@})",
     [](auto& code) { return Outcome{Status(code), "d\n", ""}; }, "d\n", {debugModeOn}},
    {"DescriptionOfAGatedCommand", &Value::text, "--start abc", "description",
     R"({"resultCode":0@})",
     [](auto& text) { return Prints(text + "\n"); }, "", {debugModeOn}},

    {"ResultCodeOfTheList", &Value::code, "--list", "resultCode",
     R"({"description":"d","services":[{"name":"n","state":"s","version":"v"}],"modules":[]@})",
     [](auto& code) { return code != "0"
                          ? Outcome{Status(code), "", "d\n"}
                          : Prints(SERVICES "n                        s              "
                                   "v              \n" NO_MODULES); },
     "", {}},
    {"DescriptionOfARefusedList", &Value::text, "--list", "description", R"({"resultCode":3@})",
     [](auto& text) { return Outcome{3, "", text + "\n"}; }, "", {}},
    {"Name", &Value::text, "--list", "name",
     R"({"resultCode":0,"modules":[],"services":[{"state":"s","version":"v"@}]})",
     [](auto& text) { return Prints(SERVICES + Padded(text, 25) +
                                    "s              v              \n" NO_MODULES); },
     SERVICES, {}},
    {"State", &Value::text, "--list", "state",
     R"({"resultCode":0,"modules":[],"services":[{"name":"n","version":"v"@}]})",
     [](auto& text) { return Prints(SERVICES "n                        " + Padded(text, 15) +
                                    "v              \n" NO_MODULES); },
     SERVICES "n                        ", {}},
    {"Version", &Value::text, "--list", "version",
     R"({"resultCode":0,"modules":[],"services":[{"name":"n","state":"s"@}]})",
     [](auto& text) { return Prints(SERVICES "n                        s              " +
                                    Padded(text, 15) + "\n" NO_MODULES); },
     SERVICES "n                        s              ", {}},
    {"Monitored", &Value::flag, "--list", "monitored",
     R"({"resultCode":0,"modules":[],"services":[{"name":"a","state":"s","monitored":true,)"
     R"("version":"v"},{"name":"n","state":"s","version":"v"@}]})",
     [](auto& flag) { return Prints(WATCHED_SERVICES
                                    "a                        s              yes            "
                                    "v              \n"
                                    "n                        s              " +
                                    Padded(flag, 15) + "v              \n" NO_MODULES); },
     WATCHED_SERVICES "a                        s              yes            v              \n"
                      "n                        s              ", {}},
};
// clang-format on

// Pointers, as copies of the rows for every process would take longer than its test.
using Cell = std::tuple<const Member*, const Value*>;

class MemberMatrix: public testing::TestWithParam<Cell>
{
};

std::string ReplyWith(const Member& member, const Value& value)
{
    std::string reply = member.reply;
    const std::string text =
        value.json == nullptr ? "" : std::string(",\"") + member.key + "\":" + value.json;
    return reply.replace(reply.find('@'), 1, text);
}

std::string CellName(const testing::TestParamInfo<Cell>& cell)
{
    const auto [member, value] = cell.param;
    return std::string(member->name) + "_" + value->name;
}

} // namespace

TEST_P(MemberMatrix, EndsAsTheTablesSay)
{
    const Member& member = *std::get<const Member*>(GetParam());
    const Value& value = *std::get<const Value*>(GetParam());
    const Reading& reading = value.*member.kind;
    ScriptedEngine engine;
    for (const char* const reply : member.repliesBefore) {
        engine.OnConnection(Reply(reply));
    }
    engine.OnConnection(Reply(ReplyWith(member, value)));
    engine.OnConnection(Reply(R"({"description":"started","resultCode":0})"));

    const Outcome outcome = RunTool(Words(member.commandLine));

    EXPECT_EQ(outcome, reading.reason.empty()
                           ? member.read(reading.shown)
                           : (Outcome{76, member.printedBefore, badReply + reading.reason + "\n"}));
}

INSTANTIATE_TEST_SUITE_P(
    Faults, MemberMatrix,
    testing::Combine(testing::Range(std::begin(memberTable), std::end(memberTable)),
                     testing::Range(std::begin(valueTable), std::end(valueTable))),
    CellName);

/// "build" is the one member that may be missing.
TEST(OptionalMember, BuildIsShownAsTextOrAsNotAvailable)
{
    for (const Value& value : valueTable) {
        const Member build{"Build",
                           &Value::text,
                           "",
                           "build",
                           R"({"safeModeEnabled":false,"debugModeEnabled":false,"state":"s",)"
                           R"("version":"v","resultCode":0@})",
                           nullptr,
                           "",
                           {}};
        const bool isMissing = value.text.reason == missing.reason;
        const std::string reply = ReplyWith(build, value);
        ScriptedEngine engine{reply.c_str()};

        EXPECT_EQ(RunTool({"--engine-status"}),
                  Prints(TITLE SAFE_LINE DEBUG_LINE STATE_LINE VERSION_LINE "Build info:    " +
                         (isMissing ? "<not available>" : Padded(value.text.shown, 15)) + "\n\n"))
            << value.name;
    }
}
