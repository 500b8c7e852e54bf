// Which exit status a run ends with.

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

TEST(RunFlow, NoArgumentPrintsAMessageThenTheHelpScreenAndEndsWithTheUsageStatus)
{
    const std::string help = RunTool({"--help"}).out;

    EXPECT_EQ(RunTool({}), (Outcome{64, "No command specified\n" + help, ""}));
}

TEST(RunFlow, ColorsAloneDoesNothingAndSucceeds)
{
    ScriptedEngine engine;

    EXPECT_EQ(RunTool({"--colors"}), (Outcome{0, "", ""}));

    EXPECT_EQ(engine.Requests(), std::vector<std::string>{});
}

TEST(RunFlow, AStrayWordDoesNothingAndSucceeds)
{
    ScriptedEngine engine;

    EXPECT_EQ(RunTool({"stray"}), (Outcome{0, "", ""}));

    EXPECT_EQ(engine.Requests(), std::vector<std::string>{});
}

TEST(RunFlow, AnEmptyArgumentCountsAsOne)
{
    EXPECT_EQ(RunTool({""}), (Outcome{0, "", ""}));
}

TEST(RunFlow, HelpEndsWithSuccess)
{
    EXPECT_EQ(RunTool({"--help"}).status, 0);
}

TEST(RunFlow, AStatusStoredByACommandIsTheExitStatusWhateverTheArguments)
{
    ScriptedEngine engine{R"({"description":"no","resultCode":3})"};

    EXPECT_EQ(RunTool(Words("--colors stray --status abc stray")), (Outcome{3, "no\n", ""}));
}

TEST(RunFlow, ASecondCommandThatSucceedsDoesNotHideTheFirstOnesFailure)
{
    ScriptedEngine engine{R"({"description":"no","resultCode":3})",
                          R"({"description":"yes","resultCode":0})"};

    EXPECT_EQ(RunTool(Words("--update --status abc")), (Outcome{3, "no\nyes\n", ""}));
}

TEST(RunFlow, ABadCommandLineEndsWithTheConfigurationStatusAndALogLine)
{
    EXPECT_EQ(RunTool({"--bogus"}), (Outcome{78, "", "Unknown option specified: bogus\n"}));
}

TEST(RunFlow, AnExceptionOutOfTheMainOperationEndsWithTheSoftwareStatus)
{
    EXPECT_EQ(RunToolAs(selfReference, {}),
              (Outcome{70, "No command specified\n", circularReference}));
}

TEST(RunFlow, AnExceptionOutOfAnOptionHandlerEndsWithTheConfigurationStatus)
{
    EXPECT_EQ(RunToolAs(selfReference, {"--help"}), (Outcome{78, "", circularReference}));
}

TEST(RunFlow, NeedsNoWorkingDirectory)
{
    EXPECT_EQ(RunShell("cd \"$(mktemp -d)\" && rmdir \"$PWD\" && $QUORLAN --update"),
              (Outcome{69, connectionRefused, ""}));
}
