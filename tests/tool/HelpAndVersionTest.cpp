// The help and version screens.

#include "tests/support/ScriptedEngine.h"
#include "tests/support/Tool.h"
#include "tests/tool/Texts.h"

#include <gtest/gtest.h>

#include <regex>

namespace {

std::string HelpAfterUsage()
{
    const std::string text = R"(Application to control Vantrel / manage module applications

-h, --help                          Display help information
-v, --version                       Display version information of this 
                                    application
--colors                            Use colors in the output
--update                            Request modules update
--update-status                     Return the status of the modules update
-d<enable>, --debug=<enable>        Enter debug mode (true, false)
-s<module>, --start=<module>        Start a mirtaq module
-p<module>, --stop=<module>         Stop a mirtaq module
-r<module>, --restart=<module>      Restart a mirtaq module
-c<module>, --reconfigure=<module>  Reconfigure a running mirtaq module model
-l, --list                          List all known mirtaq services and modules
-u<module>, --status=<module>       Return the status of a mirtaq module
-e, --engine-status                 Return the status of the Vantrel
-i<module>, --pid=<module>          Return the PID of a module
-m<module>, --monitor=<module>      Stop heartbeat monitoring of a module
)";
    return std::regex_replace(text, std::regex("\n(-.)<"),
                              "\n$1" + PocoUnderTest().beforeArgument + "<");
}

} // namespace

TEST(HelpScreen, ListsEveryOptionInTheTablesOrderUnderTheNameOfTheTool)
{
    EXPECT_EQ(RunToolAs("quorlan", {"--help"}),
              (Outcome{0, "usage: quorlan OPTIONS\n" + HelpAfterUsage(), ""}));
    EXPECT_EQ(RunToolAs("engine-control", {"-h"}),
              (Outcome{0, "usage: engine-control OPTIONS\n" + HelpAfterUsage(), ""}));
}

TEST(HelpScreen, KeepsLaterOptionsFromBeingHandled)
{
    ScriptedEngine engine;

    const Outcome outcome = RunTool(Words("--help --start abc"));

    EXPECT_EQ(outcome, RunTool({"--help"}));
    EXPECT_EQ(engine.Requests(), std::vector<std::string>{});
}

TEST(VersionScreen, ShowsReleaseRevisionBranchBuildTypeHostDateAndTime)
{
    const Outcome outcome = RunTool({"--version"});

    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    const std::regex screen("quorlan v(" QUORLAN_RELEASE "\\+\\S+)\n"
                            "\\(build info: (\\S+) git:\\S+ [a-z]+ host:\\S+ "
                            "[A-Z][a-z]{2} [0-9]{2} [0-9]{4} [0-9]{2}:[0-9]{2}:[0-9]{2}\\)\n");
    std::smatch match;
    ASSERT_TRUE(std::regex_match(outcome.out, match, screen)) << outcome.out;
    EXPECT_EQ(match[1], match[2]);
}

TEST(VersionScreen, KeepsLaterOptionsFromBeingHandled)
{
    const Outcome alone = RunTool({"--version"});

    for (const char* const commandLine : {"-v", "-v --help", "--version --bogus"}) {
        EXPECT_EQ(RunTool(Words(commandLine)), alone) << commandLine;
    }
}

TEST(VersionScreen, ComesAfterTheReportOfACommandBeforeIt)
{
    ScriptedEngine engine{debugModeOn, accepted};
    const std::string version = RunTool({"--version"}).out;

    EXPECT_EQ(RunTool(Words("--start abc --version")), (Outcome{0, "ok\n" + version, ""}));
}
