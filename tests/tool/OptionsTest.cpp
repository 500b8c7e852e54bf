// What a user can type: names, prefixes, arguments, validators and combinations.

#include "tests/support/ScriptedEngine.h"
#include "tests/support/TestName.h"
#include "tests/support/Tool.h"
#include "tests/tool/Texts.h"

#include <gtest/gtest.h>

namespace {

/// A reply that suits every command, the query of the debug mode included.
const char* const serviceableReply =
    R"({"debugModeEnabled":true,"safeModeEnabled":false,"state":"s","version":"v",)"
    R"("description":"ok","services":[],"modules":[],"resultCode":0})";

struct Conversation
{
    Outcome outcome;
    std::vector<std::string> requests;
};

Conversation Converse(const std::string& commandLine)
{
    ScriptedEngine engine{serviceableReply, serviceableReply, serviceableReply, serviceableReply};
    const Outcome outcome = RunTool(Words(commandLine));
    return {outcome, engine.Requests()};
}

struct GoodLine
{
    const char* words;
    std::vector<std::string> requests;
};

struct BadLine
{
    const char* words;
    const char* message;
};

void PrintTo(const GoodLine& line, std::ostream* stream)
{
    *stream << line.words;
}

void PrintTo(const BadLine& line, std::ostream* stream)
{
    *stream << line.words;
}

class GoodCommandLine: public testing::TestWithParam<GoodLine>
{
};
class RefusedCommandLine: public testing::TestWithParam<BadLine>
{
};
class CommandOfTheGroup: public testing::TestWithParam<const char*>
{
};

const auto nameOfLine = [](const auto& line) {
    return TestName(line.param.words);
};

const char* const query = engineStatusRequest;

} // namespace

TEST_P(GoodCommandLine, LeadsToItsRequestsAndNoOther)
{
    const Conversation conversation = Converse(GetParam().words);

    EXPECT_EQ(conversation.outcome.status, 0) << conversation.outcome.err;
    EXPECT_EQ(conversation.requests, GetParam().requests);
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(
    Options, GoodCommandLine,
    testing::Values(
        GoodLine{"--update",            {R"({"command":"update"})"}},
        GoodLine{"--update now",        {R"({"command":"update"})"}},
        GoodLine{"--update-status",     {R"({"command":"update-status"})"}},
        GoodLine{"--update-",           {R"({"command":"update-status"})"}},
        GoodLine{"--debug true",        {R"({"boolean":"true","command":"debug"})"}},
        GoodLine{"--debug=false",       {R"({"boolean":"false","command":"debug"})"}},
        GoodLine{"--debug TRUE",        {R"({"boolean":"TRUE","command":"debug"})"}},
        GoodLine{"--debug fAlSe",       {R"({"boolean":"fAlSe","command":"debug"})"}},
        GoodLine{"-d true",             {R"({"boolean":"true","command":"debug"})"}},
        GoodLine{"-dTrue",              {R"({"boolean":"True","command":"debug"})"}},
        GoodLine{"--start abc",         {query, R"({"command":"start","module":"abc"})"}},
        GoodLine{"--start=abc",         {query, R"({"command":"start","module":"abc"})"}},
        GoodLine{"--start:abc",         {query, R"({"command":"start","module":"abc"})"}},
        GoodLine{"--star abc",          {query, R"({"command":"start","module":"abc"})"}},
        GoodLine{"-s abc",              {query, R"({"command":"start","module":"abc"})"}},
        GoodLine{"-sabc",               {query, R"({"command":"start","module":"abc"})"}},
        GoodLine{"--stop abc",          {query, R"({"command":"stop","module":"abc"})"}},
        GoodLine{"-p abc",              {query, R"({"command":"stop","module":"abc"})"}},
        GoodLine{"--restart abc",       {query, R"({"command":"restart","module":"abc"})"}},
        GoodLine{"-r abc",              {query, R"({"command":"restart","module":"abc"})"}},
        GoodLine{"--reconfigure abc",   {query, R"({"command":"reconfigure","module":"abc"})"}},
        GoodLine{"-c abc",              {query, R"({"command":"reconfigure","module":"abc"})"}},
        GoodLine{"--list",              {R"({"command":"list"})"}},
        GoodLine{"--LIST",              {R"({"command":"list"})"}},
        GoodLine{"--l",                 {R"({"command":"list"})"}},
        GoodLine{"-l",                  {R"({"command":"list"})"}},
        GoodLine{"--status abc",        {R"({"command":"status","module":"abc"})"}},
        GoodLine{"-u abc",              {R"({"command":"status","module":"abc"})"}},
        GoodLine{"--status 0123456789abcDEF",
                                        {R"({"command":"status","module":"0123456789abcDEF"})"}},
        GoodLine{"--engine-status",     {R"({"command":"engine-status"})"}},
        GoodLine{"--eng",               {R"({"command":"engine-status"})"}},
        GoodLine{"-e",                  {R"({"command":"engine-status"})"}},
        GoodLine{"--pid abc",           {R"({"command":"pid","module":"abc"})"}},
        GoodLine{"-i abc",              {R"({"command":"pid","module":"abc"})"}},
        GoodLine{"--monitor abc",       {query, R"({"command":"monitor","module":"abc"})"}},
        GoodLine{"-m abc",              {query, R"({"command":"monitor","module":"abc"})"}}),
    nameOfLine);
// clang-format on

TEST_P(RefusedCommandLine, EndsBeforeAnyRequest)
{
    const Conversation conversation = Converse(GetParam().words);

    EXPECT_EQ(conversation.outcome, (Outcome{78, "", std::string(GetParam().message) + "\n"}));
    EXPECT_EQ(conversation.requests, std::vector<std::string>{});
}

#define NO_MATCH(option, expression)                                                               \
    "Invalid option argument: argument for " option " does not match regular "                     \
    "expression " expression
#define NO_MODULE(option) NO_MATCH(option, "[0-9A-Za-z]{1,16}$")
#define NO_FLAG NO_MATCH("debug", "^(?i)(true|false)$")

// clang-format off
INSTANTIATE_TEST_SUITE_P(
    Options, RefusedCommandLine,
    testing::Values(
        BadLine{"--start abcdefghijklmnopq", NO_MODULE("start")},
        BadLine{"--start ab-c",              NO_MODULE("start")},
        BadLine{"-s -abc",                   NO_MODULE("start")},
        BadLine{"--start=",                  NO_MODULE("start")},
        BadLine{"--stop ab_c",               NO_MODULE("stop")},
        BadLine{"--restart ab.c",            NO_MODULE("restart")},
        BadLine{"--reconfigure ab/c",        NO_MODULE("reconfigure")},
        BadLine{"--status \xc3\xa9",         NO_MODULE("status")},
        BadLine{"--pid abcdefghijklmnopq",   NO_MODULE("pid")},
        BadLine{"--monitor a,b",             NO_MODULE("monitor")},
        BadLine{"--debug maybe",             NO_FLAG},
        BadLine{"--debug 1",                 NO_FLAG},
        BadLine{"--debug truefalse",         NO_FLAG},
        BadLine{"--start",                   "Missing option argument: start requires <module>"},
        BadLine{"-star",                     "Missing option argument: start requires <module>"},
        BadLine{"-d",                        "Missing option argument: debug requires <enable>"},
        BadLine{"--update=now",              "Unexpected option argument: update=now"},
        BadLine{"-el",                       "Unexpected option argument: el"},
        BadLine{"--bogus",                   "Unknown option specified: bogus"},
        BadLine{"-x",                        "Unknown option specified: x"},
        BadLine{"--st abc",                  "Ambiguous option specified: st"},
        BadLine{"--upd",                     "Ambiguous option specified: upd"},
        BadLine{"--re abc",                  "Ambiguous option specified: re"},
        BadLine{"--colors --colors",         "Option must not be given more than once: colors"}),
    nameOfLine);
// clang-format on

// "$" alone would match before a final newline; POCO wants the match to cover the whole argument.
TEST(Options, RefuseAModuleNameThatIsEmptyOrHasANewlineAtItsEnd)
{
    ScriptedEngine engine;

    for (const char* const module : {"", "abc\n"}) {
        EXPECT_EQ(RunTool({"--status", module}), (Outcome{78, "", NO_MODULE("status") "\n"}));
    }

    EXPECT_EQ(engine.Requests(), std::vector<std::string>{});
}

TEST_P(CommandOfTheGroup, RefusesAnotherBehindItAfterItHasRun)
{
    const Conversation alone = Converse(GetParam());

    const Conversation both = Converse(GetParam() + std::string(" --pid other"));

    EXPECT_EQ(both.outcome, (Outcome{78, alone.outcome.out, "Incompatible options: pid\n"}));
    EXPECT_EQ(both.requests, alone.requests);
}

INSTANTIATE_TEST_SUITE_P(Options, CommandOfTheGroup,
                         testing::Values("--debug true", "--start abc", "--stop abc",
                                         "--restart abc", "--reconfigure abc", "--list",
                                         "--status abc", "--engine-status", "--pid abc",
                                         "--monitor abc"),
                         [](const auto& command) { return TestName(command.param); });

// Whether it may be repeated or not: the group is looked at first.
TEST(Options, ACommandGivenTwiceIsIncompatibleWithItself)
{
    const std::string tables = Converse("--list").outcome.out;

    EXPECT_EQ(Converse("--status a --status b").outcome,
              (Outcome{78, "ok\n", "Incompatible options: status\n"}));
    EXPECT_EQ(Converse("--list --list").outcome,
              (Outcome{78, tables, "Incompatible options: list\n"}));
}

TEST(Options, AnUpdateGivenTwiceFailsAfterTheFirstHasRun)
{
    const Conversation update = Converse("--update --update");
    EXPECT_EQ(update.outcome,
              (Outcome{78, "ok\n", "Option must not be given more than once: update\n"}));
    EXPECT_EQ(update.requests, std::vector<std::string>{R"({"command":"update"})"});

    const Conversation status = Converse("--update-status --update-status");
    EXPECT_EQ(status.outcome,
              (Outcome{78, "ok\n", "Option must not be given more than once: update-status\n"}));
    EXPECT_EQ(status.requests, std::vector<std::string>{R"({"command":"update-status"})"});
}

TEST(Options, OutsideTheGroupGoWithACommandAndWithEachOther)
{
    const std::string help = RunTool({"--help"}).out;

    const Conversation conversation =
        Converse("--status abc --colors --update --update-status --help");

    EXPECT_EQ(conversation.outcome, (Outcome{0, "ok\nok\nok\n" + help, ""}));
    EXPECT_EQ(
        conversation.requests,
        (std::vector<std::string>{R"({"command":"status","module":"abc"})",
                                  R"({"command":"update"})", R"({"command":"update-status"})"}));
}
