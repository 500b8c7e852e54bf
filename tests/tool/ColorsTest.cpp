// What --colors does: which bytes, around what, and when at all.

#include "tests/support/ScriptedEngine.h"
#include "tests/support/Tool.h"
#include "tests/tool/Texts.h"

#include <gtest/gtest.h>

namespace {

const char* const listReply =
    R"({"resultCode":0,"services":[{"name":"log","state":"running","version":"1"},
                                   {"name":"web","state":"stopped","version":"1"},
                                   {"name":"ftp","state":"terminated","version":"1"},
                                   {"name":"ntp","state":"Running","version":"1"},
                                   {"name":"sql","state":5,"version":"1"}],
        "modules":[{"name":"pump","state":"starting","monitored":true,"version":"2"},
                   {"name":"valve","state":"running","monitored":false,"version":"2"}]})";

const char* const statusReply =
    R"({"safeModeEnabled":true,"debugModeEnabled":true,"state":"running",)"
    R"("version":"1.0","build":"x","resultCode":0})";
const char* const calmStatusReply =
    R"({"safeModeEnabled":false,"debugModeEnabled":false,"state":"running",)"
    R"("version":"1.0","build":"x","resultCode":0})";

Outcome Show(const char* reply, const std::string& commandLine, Terminal terminal)
{
    ScriptedEngine engine{reply};
    return RunTool(Words(commandLine), terminal);
}

} // namespace

TEST(Colors, OfTheListMarkHeadingsStatesAndHeartbeats)
{
    EXPECT_EQ(
        Show(listReply, "--colors --list", Terminal::Output),
        (Outcome{0,
                 "\033[1mSERVICE NAME             \033[00m\033[1mSTATE          \033[00m"
                 "\033[1mVERSION        \033[00m\n"
                 "-------------------------------------------------------\n"
                 "log                      \033[32mrunning        \033[00m1              \n"
                 "web                      \033[31mstopped        \033[00m1              \n"
                 "ftp                      \033[31mterminated     \033[00m1              \n"
                 "ntp                      \033[33mRunning        \033[00m1              \n"
                 "sql                      \033[33m5              \033[00m1              \n"
                 "\n"
                 "\033[1mMODULE NAME              \033[00m\033[1mSTATE          \033[00m"
                 "\033[1mHEARTBEAT      \033[00m\033[1mVERSION        \033[00m\n"
                 "----------------------------------------------------------------------\n"
                 "pump                     \033[33mstarting       \033[00m\033[32myes            "
                 "\033[00m2              \n"
                 "valve                    \033[32mrunning        \033[00m\033[31mno             "
                 "\033[00m2              \n"
                 "\n",
                 ""}));
}

TEST(Colors, OfTheStatusMarkTheTitleTheModesAndTheState)
{
    const auto report = [](const char* safeMode, const char* debugMode) {
        return std::string("\033[1mVantrel status\033[00m\n"
                           "------------------------------\n"
                           "Safe mode:     ") +
               safeMode + "\033[00m\nDebug mode:    " + debugMode +
               "\033[00m\n"
               "State:         \033[34mrunning        \033[00m\n"
               "Version:       1.0            \n"
               "Build info:    x              \n"
               "\n";
    };

    EXPECT_EQ(Show(statusReply, "--colors --engine-status", Terminal::Output),
              (Outcome{0, report("\033[31menabled        ", "\033[33menabled        "), ""}));
    EXPECT_EQ(Show(calmStatusReply, "--colors --engine-status", Terminal::Output),
              (Outcome{0, report("\033[32mdisabled       ", "\033[32mdisabled       "), ""}));
}

TEST(Colors, NeedTheOptionAndATerminalAsStandardOutput)
{
    const Outcome plain = Show(listReply, "--list", Terminal::None);
    const Outcome styled = Show(listReply, "--colors --list", Terminal::Output);

    EXPECT_EQ(Show(listReply, "--list", Terminal::Both), plain);
    EXPECT_EQ(Show(listReply, "--colors --list", Terminal::None), plain);
    EXPECT_EQ(Show(listReply, "--colors --list", Terminal::Error), plain);
    EXPECT_EQ(Show(listReply, "--colors --list", Terminal::Both), styled);
}

TEST(Colors, DoNotApplyToReportsBeforeTheOption)
{
    ScriptedEngine engine{listReply, listReply};

    EXPECT_EQ(RunTool(Words("--list --colors"), Terminal::Output),
              RunTool({"--list"}, Terminal::None));
}

TEST(Colors, StayOnForEveryReportAfterTheOption)
{
    ScriptedEngine engine{R"({"description":"ok","resultCode":0})", listReply, listReply};

    const std::string styled = RunTool(Words("--colors --update --list"), Terminal::Output).out;

    EXPECT_EQ(styled, "ok\n" + RunTool(Words("--colors --list"), Terminal::Output).out);
}

TEST(Colors, AreNotBegunForAValueThatCannotBeRead)
{
    const std::string title = "\033[1mVantrel status\033[00m\n------------------------------\n";
    const std::string safeMode = "Safe mode:     \033[31menabled        \033[00m\n";
    const std::string debugMode = "Debug mode:    \033[33menabled        \033[00m\n";
    const std::string heading =
        "\033[1mSERVICE NAME             \033[00m\033[1mSTATE          \033[00m"
        "\033[1mHEARTBEAT      \033[00m\033[1mVERSION        \033[00m\n"
        "----------------------------------------------------------------------\n"
        "log                      ";
    const auto expect = [](const char* reply, const char* command, const std::string& out) {
        EXPECT_EQ(Show(reply, std::string("--colors ") + command, Terminal::Output),
                  (Outcome{76, out, missingValue}));
    };

    expect(R"({})", "--engine-status", title + "Safe mode:     ");
    expect(R"({"safeModeEnabled":true})", "--engine-status", title + safeMode + "Debug mode:    ");
    expect(R"({"safeModeEnabled":true,"debugModeEnabled":true})", "--engine-status",
           title + safeMode + debugMode + "State:         ");
    expect(R"({"resultCode":0,"services":[{"name":"log","monitored":null}]})", "--list", heading);
    expect(R"({"resultCode":0,"services":[{"name":"log","state":"running","monitored":null}]})",
           "--list", heading + "\033[32mrunning        \033[00m");
}

TEST(Colors, LeaveTheSentenceOfAnEmptyTableAlone)
{
    const std::string headings = "\033[1mSTATE          \033[00m\033[1mVERSION        \033[00m\n"
                                 "-------------------------------------------------------\n"
                                 "None are loaded!\n\n";

    EXPECT_EQ(
        Show(R"({"resultCode":0,"services":[],"modules":[]})", "--colors --list", Terminal::Output),
        (Outcome{0,
                 "\033[1mSERVICE NAME             \033[00m" + headings +
                     "\033[1mMODULE NAME              \033[00m" + headings,
                 ""}));
}

TEST(Colors, AreNotUsedForFailures)
{
    EXPECT_EQ(RunTool(Words("--colors --start abc"), Terminal::Both),
              (Outcome{76, connectionRefused + debugModeIsOff, emptyReply}));
    EXPECT_EQ(
        Show(R"({"resultCode":7,"description":"not ready"})", "--colors --list", Terminal::Both),
        (Outcome{7, "", "not ready\n"}));
}
