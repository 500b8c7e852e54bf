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

/// A command line and the request that it leads to, or the message that refuses it.
struct CommandLine
{
    const char* words;
    const char* result;
};

void PrintTo(const CommandLine& commandLine, std::ostream* stream)
{
    *stream << commandLine.words;
}

class GatedCommandLine: public testing::TestWithParam<CommandLine>
{
};
class UngatedCommandLine: public testing::TestWithParam<CommandLine>
{
};
class RefusedCommandLine: public testing::TestWithParam<CommandLine>
{
};
class CommandOfTheGroup: public testing::TestWithParam<const char*>
{
};

const auto name = [](const auto& info) {
    return TestName(info.param.words);
};

} // namespace

TEST_P(GatedCommandLine, LeadsToTheQueryAndItsRequest)
{
    const Conversation conversation = Converse(GetParam().words);

    EXPECT_EQ(conversation.outcome, (Outcome{0, "ok\n", ""}));
    EXPECT_EQ(conversation.requests,
              (std::vector<std::string>{engineStatusRequest, GetParam().result}));
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(
    Options, GatedCommandLine,
    testing::Values(
        CommandLine{"--start abc",       R"({"command":"start","module":"abc"})"},
        CommandLine{"--start=abc",       R"({"command":"start","module":"abc"})"},
        CommandLine{"--start:abc",       R"({"command":"start","module":"abc"})"},
        CommandLine{"--star abc",        R"({"command":"start","module":"abc"})"},
        CommandLine{"-s abc",            R"({"command":"start","module":"abc"})"},
        CommandLine{"-sabc",             R"({"command":"start","module":"abc"})"},
        CommandLine{"--stop abc",        R"({"command":"stop","module":"abc"})"},
        CommandLine{"-p abc",            R"({"command":"stop","module":"abc"})"},
        CommandLine{"--restart abc",     R"({"command":"restart","module":"abc"})"},
        CommandLine{"-r abc",            R"({"command":"restart","module":"abc"})"},
        CommandLine{"--reconfigure abc", R"({"command":"reconfigure","module":"abc"})"},
        CommandLine{"-c abc",            R"({"command":"reconfigure","module":"abc"})"},
        CommandLine{"--monitor abc",     R"({"command":"monitor","module":"abc"})"},
        CommandLine{"-m abc",            R"({"command":"monitor","module":"abc"})"}),
    name);
// clang-format on

TEST_P(UngatedCommandLine, LeadsToItsRequestAtOnce)
{
    const Conversation conversation = Converse(GetParam().words);

    EXPECT_EQ(conversation.outcome.status, 0) << conversation.outcome.err;
    EXPECT_EQ(conversation.requests, std::vector<std::string>{GetParam().result});
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(
    Options, UngatedCommandLine,
    testing::Values(
        CommandLine{"--update",          R"({"command":"update"})"},
        CommandLine{"--update now",      R"({"command":"update"})"},
        CommandLine{"--update-status",   R"({"command":"update-status"})"},
        CommandLine{"--update-",         R"({"command":"update-status"})"},
        CommandLine{"--debug true",      R"({"boolean":"true","command":"debug"})"},
        CommandLine{"--debug=false",     R"({"boolean":"false","command":"debug"})"},
        CommandLine{"--debug TRUE",      R"({"boolean":"TRUE","command":"debug"})"},
        CommandLine{"--debug fAlSe",     R"({"boolean":"fAlSe","command":"debug"})"},
        CommandLine{"-d true",           R"({"boolean":"true","command":"debug"})"},
        CommandLine{"-dTrue",            R"({"boolean":"True","command":"debug"})"},
        CommandLine{"--list",            R"({"command":"list"})"},
        CommandLine{"--LIST",            R"({"command":"list"})"},
        CommandLine{"--l",               R"({"command":"list"})"},
        CommandLine{"-l",                R"({"command":"list"})"},
        CommandLine{"--status abc",      R"({"command":"status","module":"abc"})"},
        CommandLine{"-u abc",            R"({"command":"status","module":"abc"})"},
        CommandLine{"--status 0123456789abcDEF",
                                         R"({"command":"status","module":"0123456789abcDEF"})"},
        CommandLine{"--engine-status",   R"({"command":"engine-status"})"},
        CommandLine{"--eng",             R"({"command":"engine-status"})"},
        CommandLine{"-e",                R"({"command":"engine-status"})"},
        CommandLine{"--pid abc",         R"({"command":"pid","module":"abc"})"},
        CommandLine{"-i abc",            R"({"command":"pid","module":"abc"})"}),
    name);
// clang-format on

TEST_P(RefusedCommandLine, EndsBeforeAnyRequest)
{
    const Conversation conversation = Converse(GetParam().words);

    EXPECT_EQ(conversation.outcome, (Outcome{78, "", std::string(GetParam().result) + "\n"}));
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
        CommandLine{"--start abcdefghijklmnopq", NO_MODULE("start")},
        CommandLine{"--start ab-c",              NO_MODULE("start")},
        CommandLine{"-s -abc",                   NO_MODULE("start")},
        CommandLine{"--start=",                  NO_MODULE("start")},
        CommandLine{"--stop ab_c",               NO_MODULE("stop")},
        CommandLine{"--restart ab.c",            NO_MODULE("restart")},
        CommandLine{"--reconfigure ab/c",        NO_MODULE("reconfigure")},
        CommandLine{"--status \xc3\xa9",         NO_MODULE("status")},
        CommandLine{"--pid abcdefghijklmnopq",   NO_MODULE("pid")},
        CommandLine{"--monitor a,b",             NO_MODULE("monitor")},
        CommandLine{"--debug maybe",             NO_FLAG},
        CommandLine{"--debug 1",                 NO_FLAG},
        CommandLine{"--debug truefalse",         NO_FLAG},
        CommandLine{"--start",           "Missing option argument: start requires <module>"},
        CommandLine{"-star",             "Missing option argument: start requires <module>"},
        CommandLine{"-d",                "Missing option argument: debug requires <enable>"},
        CommandLine{"--update=now",      "Unexpected option argument: update=now"},
        CommandLine{"-el",               "Unexpected option argument: el"},
        CommandLine{"--bogus",           "Unknown option specified: bogus"},
        CommandLine{"-x",                "Unknown option specified: x"},
        CommandLine{"--st abc",          "Ambiguous option specified: st"},
        CommandLine{"--upd",             "Ambiguous option specified: upd"},
        CommandLine{"--re abc",          "Ambiguous option specified: re"},
        CommandLine{"--colors --colors", "Option must not be given more than once: colors"}),
    name);
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
    for (const std::string option : {"update", "update-status"}) {
        const Conversation twice = Converse("--" + option + " --" + option);

        EXPECT_EQ(
            twice.outcome,
            (Outcome{78, "ok\n", "Option must not be given more than once: " + option + "\n"}));
        EXPECT_EQ(twice.requests, std::vector<std::string>{R"({"command":")" + option + "\"}"});
    }
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
