// What a user can type: names, prefixes, arguments, validators and combinations.

#include "tests/support/ScriptedEngine.h"
#include "tests/support/TestName.h"
#include "tests/support/Tool.h"
#include "tests/tool/Texts.h"

#include <gtest/gtest.h>

#include <iterator>

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

class GoodCommandLine: public testing::TestWithParam<const GoodLine*>
{
};
class RefusedCommandLine: public testing::TestWithParam<const BadLine*>
{
};
class CommandOfTheGroup: public testing::TestWithParam<const char*>
{
};

const auto nameOfLine = [](const auto& line) {
    return TestName(line.param->words);
};

const char* const query = engineStatusRequest;

// clang-format off
const GoodLine goodLines[] = {
    {"--update",            {R"({"command":"update"})"}},
    {"--update now",        {R"({"command":"update"})"}},
    {"--update-status",     {R"({"command":"update-status"})"}},
    {"--update-",           {R"({"command":"update-status"})"}},
    {"--debug true",        {R"({"boolean":"true","command":"debug"})"}},
    {"--debug=false",       {R"({"boolean":"false","command":"debug"})"}},
    {"--debug TRUE",        {R"({"boolean":"TRUE","command":"debug"})"}},
    {"--debug fAlSe",       {R"({"boolean":"fAlSe","command":"debug"})"}},
    {"-d true",             {R"({"boolean":"true","command":"debug"})"}},
    {"-dTrue",              {R"({"boolean":"True","command":"debug"})"}},
    {"--start abc",         {query, R"({"command":"start","module":"abc"})"}},
    {"--start=abc",         {query, R"({"command":"start","module":"abc"})"}},
    {"--start:abc",         {query, R"({"command":"start","module":"abc"})"}},
    {"--star abc",          {query, R"({"command":"start","module":"abc"})"}},
    {"-s abc",              {query, R"({"command":"start","module":"abc"})"}},
    {"-sabc",               {query, R"({"command":"start","module":"abc"})"}},
    {"--stop abc",          {query, R"({"command":"stop","module":"abc"})"}},
    {"-p abc",              {query, R"({"command":"stop","module":"abc"})"}},
    {"--restart abc",       {query, R"({"command":"restart","module":"abc"})"}},
    {"-r abc",              {query, R"({"command":"restart","module":"abc"})"}},
    {"--reconfigure abc",   {query, R"({"command":"reconfigure","module":"abc"})"}},
    {"-c abc",              {query, R"({"command":"reconfigure","module":"abc"})"}},
    {"--list",              {R"({"command":"list"})"}},
    {"--LIST",              {R"({"command":"list"})"}},
    {"--l",                 {R"({"command":"list"})"}},
    {"-l",                  {R"({"command":"list"})"}},
    {"--status abc",        {R"({"command":"status","module":"abc"})"}},
    {"-u abc",              {R"({"command":"status","module":"abc"})"}},
    {"--status 0123456789abcDEF",
                            {R"({"command":"status","module":"0123456789abcDEF"})"}},
    {"--engine-status",     {R"({"command":"engine-status"})"}},
    {"--eng",               {R"({"command":"engine-status"})"}},
    {"-e",                  {R"({"command":"engine-status"})"}},
    {"--pid abc",           {R"({"command":"pid","module":"abc"})"}},
    {"-i abc",              {R"({"command":"pid","module":"abc"})"}},
    {"--monitor abc",       {query, R"({"command":"monitor","module":"abc"})"}},
    {"-m abc",              {query, R"({"command":"monitor","module":"abc"})"}},
};
// clang-format on

#define NO_MATCH(option, expression)                                                               \
    "Invalid option argument: argument for " option " does not match regular "                     \
    "expression " expression
#define NO_MODULE(option) NO_MATCH(option, "[0-9A-Za-z]{1,16}$")
#define NO_FLAG NO_MATCH("debug", "^(?i)(true|false)$")

// clang-format off
const BadLine badLines[] = {
    {"--start abcdefghijklmnopq", NO_MODULE("start")},
    {"--start ab-c",              NO_MODULE("start")},
    {"-s -abc",                   NO_MODULE("start")},
    {"--start=",                  NO_MODULE("start")},
    {"--stop ab_c",               NO_MODULE("stop")},
    {"--restart ab.c",            NO_MODULE("restart")},
    {"--reconfigure ab/c",        NO_MODULE("reconfigure")},
    {"--status \xc3\xa9",         NO_MODULE("status")},
    {"--pid abcdefghijklmnopq",   NO_MODULE("pid")},
    {"--monitor a,b",             NO_MODULE("monitor")},
    {"--debug maybe",             NO_FLAG},
    {"--debug 1",                 NO_FLAG},
    {"--debug truefalse",         NO_FLAG},
    {"--start",                   "Missing option argument: start requires <module>"},
    {"-star",                     "Missing option argument: start requires <module>"},
    {"-d",                        "Missing option argument: debug requires <enable>"},
    {"--update=now",              "Unexpected option argument: update=now"},
    {"-el",                       "Unexpected option argument: el"},
    {"--bogus",                   "Unknown option specified: bogus"},
    {"-x",                        "Unknown option specified: x"},
    {"--st abc",                  "Ambiguous option specified: st"},
    {"--upd",                     "Ambiguous option specified: upd"},
    {"--re abc",                  "Ambiguous option specified: re"},
    {"--colors --colors",         "Option must not be given more than once: colors"},
};
// clang-format on

} // namespace

TEST_P(GoodCommandLine, LeadsToItsRequestsAndNoOther)
{
    const Conversation conversation = Converse(GetParam()->words);

    EXPECT_EQ(conversation.outcome.status, 0) << conversation.outcome.err;
    EXPECT_EQ(conversation.requests, GetParam()->requests);
}

INSTANTIATE_TEST_SUITE_P(Options, GoodCommandLine,
                         testing::Range(std::begin(goodLines), std::end(goodLines)), nameOfLine);

TEST_P(RefusedCommandLine, EndsBeforeAnyRequest)
{
    const Conversation conversation = Converse(GetParam()->words);

    EXPECT_EQ(conversation.outcome, (Outcome{78, "", std::string(GetParam()->message) + "\n"}));
    EXPECT_EQ(conversation.requests, std::vector<std::string>{});
}

INSTANTIATE_TEST_SUITE_P(Options, RefusedCommandLine,
                         testing::Range(std::begin(badLines), std::end(badLines)), nameOfLine);

// "$" alone would match before a final newline; POCO wants the match to cover the whole argument.
TEST(Options, RefuseAModuleNameThatIsEmptyOrHasANewlineAtItsEnd)
{
    ScriptedEngine engine;

    for (const char* const module : {"", "abc\n"}) {
        EXPECT_EQ(RunTool({"--status", module}), (Outcome{78, "", NO_MODULE("status") "\n"}));
    }

    EXPECT_EQ(engine.Requests(), std::vector<std::string>{});
}

TEST_P(CommandOfTheGroup, RefusesAnotherAfterItHasRun)
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
