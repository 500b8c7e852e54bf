// A run whose standard streams are closed, full or gone.

#include "tests/support/PrivateNetwork.h"
#include "tests/support/ScriptedEngine.h"
#include "tests/support/Tool.h"
#include "tests/tool/FullListener.h"
#include "tests/tool/Texts.h"

#include <gtest/gtest.h>

namespace {

/// A list whose report is larger than a pipe holds.
std::string LongList()
{
    std::string entries;
    for (int i = 0; i < 5000; ++i) {
        entries += R"({"name":"n","state":"s","version":"v"},)";
    }
    entries.pop_back();
    return R"({"resultCode":0,"services":[)" + entries + R"(],"modules":[]})";
}

} // namespace

// A socket that is opened while a standard stream is closed gets the stream's number; no report may
// end up in it.
TEST(StandardStreams, AllClosedLeaveTheWireClean)
{
    ScriptedEngine engine{debugModeOn, accepted};

    EXPECT_EQ(RunShell("$QUORLAN --start abc <&- >&- 2>&-"), (Outcome{0, "", ""}));

    EXPECT_EQ(
        engine.Requests(),
        (std::vector<std::string>{engineStatusRequest, R"({"command":"start","module":"abc"})"}));
}

TEST(StandardStreams, AllClosedLeaveTheWireCleanOfTheReportOfAnEarlierCommand)
{
    ScriptedEngine engine{accepted, "nonsense"};

    EXPECT_EQ(RunShell("$QUORLAN --update --status abc <&- >&- 2>&-"), (Outcome{76, "", ""}));

    EXPECT_EQ(engine.Requests(),
              (std::vector<std::string>{R"({"command":"update"})",
                                        R"({"command":"status","module":"abc"})"}));
}

TEST(StandardStreams, ClosedErrorDoesNotChangeTheStatus)
{
    ScriptedEngine engine{"nonsense"};

    EXPECT_EQ(RunShell("$QUORLAN --update 2>&-"), (Outcome{76, "", ""}));
    EXPECT_EQ(RunShell("$QUORLAN --bogus 2>&-"), (Outcome{78, "", ""}));
}

TEST(StandardStreams, AReportThatCannotBeWrittenDoesNotChangeTheStatus)
{
    for (const std::string output : {" >&-", " >/dev/full"}) {
        ScriptedEngine engine{accepted, refused};

        EXPECT_EQ(RunShell("$QUORLAN --update" + output), (Outcome{0, "", ""})) << output;
        EXPECT_EQ(RunShell("$QUORLAN --update" + output), (Outcome{3, "", ""})) << output;
        EXPECT_EQ(RunShell("$QUORLAN --help" + output), (Outcome{0, "", ""})) << output;
        EXPECT_EQ(RunShell("$QUORLAN" + output), (Outcome{64, "", ""})) << output;
    }
}

TEST(StandardStreams, AReaderThatHasGoneDoesNotChangeTheStatus)
{
    ScriptedEngine engine;
    engine.OnConnection(Reply(LongList()));

    EXPECT_EQ(
        RunShell("{ $QUORLAN --list; echo \"status $?\" >&2; } | head -n 1"),
        (Outcome{0, "SERVICE NAME             STATE          VERSION        \n", "status 0\n"}));
}

TEST(StandardStreams, LinesComeInTheOrderTheyWereWritten)
{
    const std::string inOrder = connectionRefused + emptyReply + debugModeIsOff;

    EXPECT_EQ(RunShell("$QUORLAN --start abc 2>&1"), (Outcome{76, inOrder, ""}));
}

// The cells of a row that could not be finished come before the reason, though no line ended there.
TEST(StandardStreams, AnUnfinishedLineComesBeforeTheReason)
{
    ScriptedEngine engine{R"({"resultCode":0})"};

    EXPECT_EQ(RunShell("$QUORLAN --engine-status 2>&1"), (Outcome{76,
                                                                  "Vantrel status\n"
                                                                  "------------------------------\n"
                                                                  "Safe mode:     " +
                                                                      missingValue,
                                                                  ""}));
}

// A script that reads a report from a pipe sees each line when it is written, not at the end.
TEST(StandardStreams, EveryLineIsFlushed)
{
    const auto lines = [](const std::string& text) {
        std::vector<std::string> parts;
        for (std::size_t start = 0; start < text.size(); start = text.find('\n', start) + 1) {
            parts.push_back(text.substr(start, text.find('\n', start) + 1 - start));
        }
        return parts;
    };
    ScriptedEngine engine;
    // More follows in each run: its end would write out what was kept back until then.
    for (const char* const arguments : {"--update --version", "--engine-status --version",
                                        "--list --version", "--start abc --version"}) {
        for (int run = 0; run < 2; ++run) {
            engine.OnConnection(
                Reply(R"({"resultCode":0,"description":"d","safeModeEnabled":true,"state":"s",)"
                      R"("debugModeEnabled":false,"version":"v","modules":[],)"
                      R"("services":[{"name":"n","state":"s","version":"v"}]})"));
        }
        const std::string report = RunTool(Words(arguments)).out;

        EXPECT_EQ(WritesOfTool(Words(arguments)), lines(report)) << arguments;
    }
}

TEST(StandardStreams, TheMessageOfAFailedConnectionIsFlushed)
{
    EXPECT_EQ(WritesOfTool(Words("--update --update-status")),
              (std::vector<std::string>{connectionRefused, connectionRefused}));
}

TEST(StandardStreams, TheMessageOfAConnectionThatNobodyAnswersIsFlushed)
{
    const FullListener listener;
    ShortenConnectTimeout();

    EXPECT_EQ(WritesOfTool(Words("--update --version")).at(0), noAnswer);
}

TEST(StandardStreams, TheMessageBeforeTheHelpScreenIsFlushed)
{
    EXPECT_EQ(WritesOfTool({}).at(0), "No command specified\n");
}
