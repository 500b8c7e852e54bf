// Which exit status a run ends with. 69 and most ways to get 76 are in FaultMatrixTest.cpp and
// ReplyMembersTest.cpp, 78 for a command line that is not understood in OptionsTest.cpp.

#include "tests/support/ScriptedEngine.h"
#include "tests/support/Tool.h"
#include "tests/tool/Texts.h"

#include <gtest/gtest.h>

namespace {

// POCO expands references in the name that the tool was started by (which ends before the last
// dot); this one refers to itself, so that showing the help screen throws.
const std::string selfReference = "${application.baseName}.link";
const std::string circularReference =
    "Circular reference: Too many property references encountered\n";

} // namespace

TEST(ExitStatus, WithoutAnyArgumentIs64AfterAMessageAndTheHelpScreen)
{
    const std::string help = RunTool({"--help"}).out;

    EXPECT_EQ(RunTool({}), (Outcome{64, "No command specified\n" + help, ""}));
}

TEST(ExitStatus, OfArgumentsThatAskForNothingIs0)
{
    ScriptedEngine engine;

    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{"--colors"}, {"list"}, {""}, {"--", "--list"}}) {
        EXPECT_EQ(RunTool(arguments), (Outcome{0, "", ""})) << testing::PrintToString(arguments);
    }

    EXPECT_EQ(engine.Requests(), std::vector<std::string>{});
}

TEST(ExitStatus, IsTheResultCodeOfTheReplyWhateverTheArguments)
{
    ScriptedEngine engine{refused};

    EXPECT_EQ(RunTool(Words("--colors stray --status abc stray")), (Outcome{3, "no\n", ""}));
}

TEST(ExitStatus, HasTheLowEightBitsOfTheResultCode)
{
    ScriptedEngine engine{R"({"description":"256","resultCode":256})",
                          R"({"description":"-1","resultCode":-1})"};

    EXPECT_EQ(RunTool({"--update"}), (Outcome{0, "256\n", ""}));
    EXPECT_EQ(RunTool({"--update"}), (Outcome{255, "-1\n", ""}));
}

TEST(ExitStatus, OfAFailureIsNotHiddenByALaterSuccess)
{
    ScriptedEngine engine{refused, accepted};

    EXPECT_EQ(RunTool(Words("--update --status abc")), (Outcome{3, "no\nok\n", ""}));
}

TEST(ExitStatus, OfABadCommandLineHidesThatOfACommandThatRan)
{
    ScriptedEngine engine{refused};

    EXPECT_EQ(RunTool(Words("--status a --list")),
              (Outcome{78, "no\n", "Incompatible options: list\n"}));
}

TEST(ExitStatus, OfAnExceptionOutOfTheMainOperationIs70)
{
    EXPECT_EQ(RunToolAs(selfReference, {}),
              (Outcome{70, "No command specified\n", circularReference}));
}

TEST(ExitStatus, OfAnExceptionOutOfAnOptionHandlerIs78)
{
    EXPECT_EQ(RunToolAs(selfReference, {"--help"}), (Outcome{78, "", circularReference}));
}
