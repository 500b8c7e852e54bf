// What a user can type: names, prefixes, arguments, validators and combinations.

#include "tests/support/ScriptedEngine.h"
#include "tests/support/Tool.h"
#include "tests/tool/Texts.h"

#include <gtest/gtest.h>

namespace {

const char* const accepted = R"({"description":"ok","resultCode":0})";

/// Words on the command line and the request that they lead to, the query of the debug mode aside.
struct Spelling
{
    const char* commandLine;
    const char* request;
};

void PrintTo(const Spelling& spelling, std::ostream* stream)
{
    *stream << spelling.commandLine;
}

std::string NameOf(const testing::TestParamInfo<Spelling>& info)
{
    std::string name;
    for (const char c : std::string(info.param.commandLine)) {
        const bool isAlphanumeric = std::isalnum(static_cast<unsigned char>(c)) != 0;
        name += isAlphanumeric ? std::string(1, c)
                : c == ' '     ? "_"
                : c == '-'     ? "Dash"
                : c == '='     ? "Equals"
                : c == ':'     ? "Colon"
                               : "Other";
    }
    return name;
}

/// A debug-mode reply that also serves as the answer to everything else.
const char* const serviceableReply =
    R"({"debugModeEnabled":true,"safeModeEnabled":false,"state":"s","version":"v",)"
    R"("description":"ok","services":[],"modules":[],"resultCode":0})";

class Spellings: public testing::TestWithParam<Spelling>
{
};

class RefusedCommandLines: public testing::TestWithParam<Spelling>
{
};

} // namespace

TEST_P(Spellings, LeadToTheirRequest)
{
    ScriptedEngine engine{serviceableReply, serviceableReply};

    const Outcome outcome = RunTool(Words(GetParam().commandLine));

    EXPECT_EQ(outcome.status, 0) << outcome.err;
    const std::vector<std::string> requests = engine.Requests();
    ASSERT_FALSE(requests.empty());
    EXPECT_EQ(requests.back(), GetParam().request);
}

INSTANTIATE_TEST_SUITE_P(
    Options, Spellings,
    testing::Values(Spelling{"--update", R"({"command":"update"})"},
                    Spelling{"--update-status", R"({"command":"update-status"})"},
                    Spelling{"--update-", R"({"command":"update-status"})"},
                    Spelling{"--debug true", R"({"boolean":"true","command":"debug"})"},
                    Spelling{"--debug=false", R"({"boolean":"false","command":"debug"})"},
                    Spelling{"--debug TRUE", R"({"boolean":"TRUE","command":"debug"})"},
                    Spelling{"--debug fAlSe", R"({"boolean":"fAlSe","command":"debug"})"},
                    Spelling{"-d true", R"({"boolean":"true","command":"debug"})"},
                    Spelling{"-dTrue", R"({"boolean":"True","command":"debug"})"},
                    Spelling{"--start abc", R"({"command":"start","module":"abc"})"},
                    Spelling{"--start=abc", R"({"command":"start","module":"abc"})"},
                    Spelling{"--start:abc", R"({"command":"start","module":"abc"})"},
                    Spelling{"--star abc", R"({"command":"start","module":"abc"})"},
                    Spelling{"-s abc", R"({"command":"start","module":"abc"})"},
                    Spelling{"-sabc", R"({"command":"start","module":"abc"})"},
                    Spelling{"--stop abc", R"({"command":"stop","module":"abc"})"},
                    Spelling{"-p abc", R"({"command":"stop","module":"abc"})"},
                    Spelling{"--restart abc", R"({"command":"restart","module":"abc"})"},
                    Spelling{"-r abc", R"({"command":"restart","module":"abc"})"},
                    Spelling{"--reconfigure abc", R"({"command":"reconfigure","module":"abc"})"},
                    Spelling{"-c abc", R"({"command":"reconfigure","module":"abc"})"},
                    Spelling{"--list", R"({"command":"list"})"},
                    Spelling{"--l", R"({"command":"list"})"},
                    Spelling{"-l", R"({"command":"list"})"},
                    Spelling{"--status abc", R"({"command":"status","module":"abc"})"},
                    Spelling{"-u abc", R"({"command":"status","module":"abc"})"},
                    Spelling{"--engine-status", R"({"command":"engine-status"})"},
                    Spelling{"--eng", R"({"command":"engine-status"})"},
                    Spelling{"-e", R"({"command":"engine-status"})"},
                    Spelling{"--pid abc", R"({"command":"pid","module":"abc"})"},
                    Spelling{"-i abc", R"({"command":"pid","module":"abc"})"},
                    Spelling{"--monitor abc", R"({"command":"monitor","module":"abc"})"},
                    Spelling{"-m abc", R"({"command":"monitor","module":"abc"})"},
                    Spelling{"--status 0123456789abcDEF",
                             R"({"command":"status","module":"0123456789abcDEF"})"}),
    NameOf);

// The second text is what standard error says; its wording is POCO's.
TEST_P(RefusedCommandLines, EndBeforeAnyRequest)
{
    ScriptedEngine engine;

    const Outcome outcome = RunTool(Words(GetParam().commandLine));

    EXPECT_EQ(outcome, (Outcome{78, "", std::string(GetParam().request) + "\n"}));
    EXPECT_EQ(engine.Requests(), std::vector<std::string>{});
}

#define NO_MATCH(option, expression)                                                               \
    "Invalid option argument: argument for " option " does not match regular "                     \
    "expression " expression
#define NO_MODULE(option) NO_MATCH(option, "[0-9A-Za-z]{1,16}$")

INSTANTIATE_TEST_SUITE_P(
    Options, RefusedCommandLines,
    testing::Values(Spelling{"--start abcdefghijklmnopq", NO_MODULE("start")},
                    Spelling{"--start ab-c", NO_MODULE("start")},
                    Spelling{"-s -abc", NO_MODULE("start")},
                    Spelling{"--stop ab_c", NO_MODULE("stop")},
                    Spelling{"--restart ab.c", NO_MODULE("restart")},
                    Spelling{"--reconfigure ab/c", NO_MODULE("reconfigure")},
                    Spelling{"--status \xc3\xa9", NO_MODULE("status")},
                    Spelling{"--pid abcdefghijklmnopq", NO_MODULE("pid")},
                    Spelling{"--monitor a,b", NO_MODULE("monitor")},
                    Spelling{"--debug maybe", NO_MATCH("debug", "^(?i)(true|false)$")},
                    Spelling{"--debug 1", NO_MATCH("debug", "^(?i)(true|false)$")},
                    Spelling{"--debug truefalse", NO_MATCH("debug", "^(?i)(true|false)$")},
                    Spelling{"--start", "Missing option argument: start requires <module>"},
                    Spelling{"--start=", NO_MODULE("start")},
                    Spelling{"-d", "Missing option argument: debug requires <enable>"},
                    Spelling{"--bogus", "Unknown option specified: bogus"},
                    Spelling{"-x", "Unknown option specified: x"},
                    Spelling{"--st abc", "Ambiguous option specified: st"},
                    Spelling{"--upd", "Ambiguous option specified: upd"},
                    Spelling{"--re abc", "Ambiguous option specified: re"},
                    Spelling{"--colors --colors",
                             "Option must not be given more than once: colors"},
                    Spelling{"--update=now", "Unexpected option argument: update=now"}),
    NameOf);

namespace {

// Each with an argument where it takes one.
const char* const commands[] = {
    "--debug true", "--start abc",       "--stop abc", "--restart abc", "--list",
    "--status abc", "--reconfigure abc", "--pid abc",  "--monitor abc", "--engine-status"};

class CommandsOfTheGroup: public testing::TestWithParam<const char*>
{
};

struct Conversation
{
    Outcome outcome;
    std::vector<std::string> requests;
};

Conversation ConversationOf(const std::string& commandLine)
{
    ScriptedEngine engine{serviceableReply, serviceableReply, serviceableReply, serviceableReply};
    const Outcome outcome = RunTool(Words(commandLine));
    return {outcome, engine.Requests()};
}

} // namespace

TEST_P(CommandsOfTheGroup, RefuseAnotherBehindThem)
{
    const Conversation alone = ConversationOf(GetParam());

    const Conversation run = ConversationOf(GetParam() + std::string(" --pid other"));

    EXPECT_EQ(run.outcome, (Outcome{78, alone.outcome.out, "Incompatible options: pid\n"}));
    EXPECT_EQ(run.requests, alone.requests);
}

// Also one that is not repeatable: the group is looked at first.
TEST_P(CommandsOfTheGroup, AreIncompatibleWithThemselves)
{
    const std::string command = GetParam();
    const Conversation alone = ConversationOf(command);

    const Conversation run = ConversationOf(command + " " + command);

    const std::string name = command.substr(2, command.find(' ') - 2);
    EXPECT_EQ(run.outcome,
              (Outcome{78, alone.outcome.out, "Incompatible options: " + name + "\n"}));
    EXPECT_EQ(run.requests, alone.requests);
}

TEST_P(CommandsOfTheGroup, LeaveRoomForTheOptionsOutsideIt)
{
    const Conversation alone = ConversationOf(GetParam());
    const std::string helpScreen = RunTool({"--help"}).out;

    const Conversation run =
        ConversationOf(GetParam() + std::string(" --colors --update --update-status --help"));

    EXPECT_EQ(run.outcome, (Outcome{0, alone.outcome.out + "ok\nok\n" + helpScreen, ""}));
    std::vector<std::string> requests = alone.requests;
    requests.insert(requests.end(), {R"({"command":"update"})", R"({"command":"update-status"})"});
    EXPECT_EQ(run.requests, requests);
}

INSTANTIATE_TEST_SUITE_P(Options, CommandsOfTheGroup, testing::ValuesIn(commands));

TEST(Options, UpdateStatusGivenTwiceFailsAfterTheFirstHasRun)
{
    ScriptedEngine engine{accepted};

    EXPECT_EQ(RunTool(Words("--update-status --update-status")),
              (Outcome{78, "ok\n", "Option must not be given more than once: update-status\n"}));
}

TEST(Options, AStrayWordBehindUpdateIsNotItsArgument)
{
    ScriptedEngine engine{accepted};

    EXPECT_EQ(RunTool({"--update", "now"}), (Outcome{0, "ok\n", ""}));

    EXPECT_EQ(engine.Requests(), std::vector<std::string>{R"({"command":"update"})"});
}

TEST(Options, ASecondCommandFailsAfterTheFirstHasRun)
{
    ScriptedEngine engine{debugModeOn, accepted};

    EXPECT_EQ(RunTool(Words("--start a --stop b")),
              (Outcome{78, "ok\n", "Incompatible options: stop\n"}));

    EXPECT_EQ(engine.Requests(), (std::vector<std::string>{engineStatusRequest,
                                                           R"({"command":"start","module":"a"})"}));
}

TEST(Options, ARepeatableCommandGivenTwiceFailsAfterTheFirstHasRun)
{
    ScriptedEngine engine{accepted};

    EXPECT_EQ(RunTool(Words("--status a --status b")),
              (Outcome{78, "ok\n", "Incompatible options: status\n"}));

    EXPECT_EQ(engine.Requests(), std::vector<std::string>{R"({"command":"status","module":"a"})"});
}

TEST(Options, ABadCommandLineHidesTheStatusOfACommandThatRan)
{
    ScriptedEngine engine{R"({"description":"no","resultCode":3})"};

    EXPECT_EQ(RunTool(Words("--status a --list")),
              (Outcome{78, "no\n", "Incompatible options: list\n"}));
}

TEST(Options, UpdateGivenTwiceFailsAfterTheFirstHasRun)
{
    ScriptedEngine engine{accepted};

    EXPECT_EQ(RunTool(Words("--update --update")),
              (Outcome{78, "ok\n", "Option must not be given more than once: update\n"}));

    EXPECT_EQ(engine.Requests(), std::vector<std::string>{R"({"command":"update"})"});
}

TEST(Options, UpdateAndListRunBoth)
{
    ScriptedEngine engine{accepted, serviceableReply};

    EXPECT_EQ(RunTool(Words("--update --list")).status, 0);

    EXPECT_EQ(engine.Requests(),
              (std::vector<std::string>{R"({"command":"update"})", R"({"command":"list"})"}));
}

TEST(Options, UpdateStatusIsNoSecondUpdate)
{
    ScriptedEngine engine{accepted, accepted};

    EXPECT_EQ(RunTool(Words("--update --update-status")), (Outcome{0, "ok\nok\n", ""}));

    EXPECT_EQ(engine.Requests(), (std::vector<std::string>{R"({"command":"update"})",
                                                           R"({"command":"update-status"})"}));
}

TEST(Options, TwoDashesEndTheOptions)
{
    ScriptedEngine engine;

    EXPECT_EQ(RunTool(Words("-- --list")), (Outcome{0, "", ""}));

    EXPECT_EQ(engine.Requests(), std::vector<std::string>{});
}

// "$" alone would match before a final newline; POCO wants the match to cover the whole argument.
TEST(Options, AModuleNameWithANewlineAtItsEndIsRefused)
{
    ScriptedEngine engine;

    EXPECT_EQ(RunTool({"--status", "abc\n"}), (Outcome{78, "", NO_MODULE("status") "\n"}));

    EXPECT_EQ(engine.Requests(), std::vector<std::string>{});
}

TEST(Options, AnEmptyModuleNameIsRefused)
{
    EXPECT_EQ(RunTool({"--status", ""}), (Outcome{78, "", NO_MODULE("status") "\n"}));
}
