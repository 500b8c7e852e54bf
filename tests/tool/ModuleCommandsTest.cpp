// The commands that the engine answers with one sentence, and the debug-mode gate.

#include "tests/support/ScriptedEngine.h"
#include "tests/support/Tool.h"
#include "tests/tool/Texts.h"

#include <gtest/gtest.h>

namespace {

const char* const accepted = R"({"description":"as you wish","resultCode":0})";

class GatedCommands: public testing::TestWithParam<const char*>
{
protected:
    std::vector<std::string> CommandLine() const { return {std::string("--") + GetParam(), "abc"}; }
    std::string Request() const
    {
        return std::string(R"({"command":")") + GetParam() + R"(","module":"abc"})";
    }
};

class UngatedCommands: public testing::TestWithParam<const char*>
{
};

class Descriptions: public testing::TestWithParam<std::pair<const char*, const char*>>
{
};

std::string FirstWord(const testing::TestParamInfo<const char*>& info)
{
    std::string name;
    for (const char c : std::string(info.param)) {
        name += std::isalpha(static_cast<unsigned char>(c)) != 0 ? std::string(1, c) : "";
    }
    return name;
}

} // namespace

TEST_P(GatedCommands, AskForDebugModeFirstAndThenPrintOneDescription)
{
    ScriptedEngine engine{debugModeOn, accepted};

    EXPECT_EQ(RunTool(CommandLine()), (Outcome{0, "as you wish\n", ""}));

    EXPECT_EQ(engine.Requests(), (std::vector<std::string>{engineStatusRequest, Request()}));
}

TEST_P(GatedCommands, AreRefusedWithSuccessAndNotSentWhileDebugModeIsOff)
{
    ScriptedEngine engine{debugModeOff};

    EXPECT_EQ(RunTool(CommandLine()), (Outcome{0, debugModeIsOff, ""}));

    EXPECT_EQ(engine.Requests(), std::vector<std::string>{engineStatusRequest});
}

TEST_P(GatedCommands, WithoutAnEngineTellOfTheConnectionTheReplyAndTheRefusal)
{
    EXPECT_EQ(RunTool(CommandLine()),
              (Outcome{76, connectionRefused + debugModeIsOff, emptyReply}));
}

TEST_P(GatedCommands, AreNotSentWhenTheQueryIsAnsweredWithNonsense)
{
    ScriptedEngine engine{"nonsense"};

    const Outcome outcome = RunTool(CommandLine());

    EXPECT_EQ(outcome.status, 76);
    EXPECT_EQ(outcome.out, debugModeIsOff);
    EXPECT_EQ(outcome.err.substr(0, badReply.size()), badReply);
    EXPECT_EQ(engine.Requests(), std::vector<std::string>{engineStatusRequest});
}

TEST_P(GatedCommands, AreNotSentWhenTheQueryIsAnsweredWithoutTheFlag)
{
    ScriptedEngine engine{R"({"resultCode":0})"};

    EXPECT_EQ(RunTool(CommandLine()), (Outcome{76, debugModeIsOff, missingValue}));

    EXPECT_EQ(engine.Requests(), std::vector<std::string>{engineStatusRequest});
}

TEST_P(GatedCommands, EndWithTheirOwnResultCode)
{
    ScriptedEngine engine{debugModeOn, R"({"description":"no such module","resultCode":5})"};

    EXPECT_EQ(RunTool(CommandLine()), (Outcome{5, "no such module\n", ""}));
}

TEST_P(GatedCommands, AreUnavailableWhenOnlyTheQueryFoundAnEngine)
{
    ScriptedEngine engine;
    engine.OnConnection(Reply(debugModeOn));
    engine.StopListeningAfter(1);

    EXPECT_EQ(RunTool(CommandLine()), (Outcome{69, connectionRefused, ""}));
}

INSTANTIATE_TEST_SUITE_P(ModuleCommands, GatedCommands,
                         testing::Values("start", "stop", "restart", "monitor", "reconfigure"),
                         FirstWord);

TEST_P(UngatedCommands, AreSentAtOnceWhateverTheDebugMode)
{
    ScriptedEngine engine{R"({"debugModeEnabled":false,"description":"fine","resultCode":0})"};

    EXPECT_EQ(RunTool(Words(GetParam())), (Outcome{0, "fine\n", ""}));

    EXPECT_EQ(engine.Requests().size(), 1U);
}

TEST_P(UngatedCommands, WithoutAnEngineTellOnlyOfTheConnection)
{
    EXPECT_EQ(RunTool(Words(GetParam())), (Outcome{69, connectionRefused, ""}));
}

TEST_P(UngatedCommands, PrintTheDescriptionOfARefusalAndEndWithItsCode)
{
    ScriptedEngine engine{R"({"description":"not now","resultCode":9})"};

    EXPECT_EQ(RunTool(Words(GetParam())), (Outcome{9, "not now\n", ""}));
}

INSTANTIATE_TEST_SUITE_P(ModuleCommands, UngatedCommands,
                         testing::Values("--status abc", "--pid abc", "--debug true", "--update",
                                         "--update-status"),
                         FirstWord);

TEST_P(Descriptions, ArePrintedAsText)
{
    const std::string reply =
        std::string(R"({"resultCode":0,"description":)") + GetParam().first + "}";
    ScriptedEngine engine{reply.c_str()};

    EXPECT_EQ(RunTool({"--update"}), (Outcome{0, std::string(GetParam().second) + "\n", ""}));
}

INSTANTIATE_TEST_SUITE_P(ModuleCommands, Descriptions,
                         testing::Values(std::pair(R"("text")", "text"), std::pair(R"("")", ""),
                                         std::pair("12", "12"), std::pair("-3", "-3"),
                                         std::pair("0.5", "0.5"), std::pair("true", "true"),
                                         std::pair("false", "false"),
                                         std::pair(R"("two\nlines")", "two\nlines"),
                                         std::pair(R"("gr\u00fc\u00df")", "gr\xc3\xbc\xc3\x9f")));

TEST(ModuleCommands, WithoutADescriptionPrintNothingAndFailEvenOnSuccess)
{
    for (const char* const reply :
         {R"({"resultCode":0})", R"({"resultCode":0,"description":null})"}) {
        ScriptedEngine engine{reply};

        EXPECT_EQ(RunTool({"--update"}), (Outcome{76, "", missingValue})) << reply;
    }
}
