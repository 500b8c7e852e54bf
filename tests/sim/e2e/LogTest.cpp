// Where the log goes and in which form.

#include "tests/sim/e2e/Simulator.h"
#include "tests/sim/e2e/TemporaryFile.h"
#include "tests/support/Tool.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

std::string TextOf(const TemporaryFile& file)
{
    std::ostringstream text;
    text << std::ifstream(file.Path()).rdbuf();
    return text.str();
}

} // namespace

TEST(SimulatorLog, GoesToAFileInsteadOfStandardError)
{
    const TemporaryFile file("of an earlier run\n");

    EXPECT_EQ(::Run({VANTREL_SIM, "--log=" + file.Path(), "--", "true"}), (Outcome{0, "", ""}));
    EXPECT_EQ(TextOf(file), Served("").err);
}

TEST(SimulatorLog, InAFileHasALineForEachRequest)
{
    const TemporaryFile file("");

    EXPECT_EQ(
        RunShell(std::string(VANTREL_SIM) + " --log=" + file.Path() + " -- $QUORLAN --pid=pump1"),
        (Outcome{0, "1004\n", ""}));

    EXPECT_EQ(TextOf(file), Served(LogLine(pidRequest, pidReply)).err);
}

TEST(SimulatorLog, InAFileThatCannotBeWrittenIsRefused)
{
    EXPECT_EQ(Simulator({"--log=/nonexistent/log"}).End(),
              Refused(73, "/nonexistent/log: cannot be written: No such file or directory"));
}

TEST(SimulatorLog, DoesNotHideWhyTheSimulatorDoesNotStart)
{
    const Simulator other;

    EXPECT_EQ(Simulator({"--log=/dev/null"}).End(),
              Refused(69, "cannot listen: Net Exception: Address already in use: 127.0.0.1:7777"));
}

TEST(SimulatorLog, InAnUnknownFormatIsRefused)
{
    EXPECT_EQ(Simulator({"--log-format=xml"}).End(),
              Refused(64, "\"xml\" is not a format of the log: text, json"));
}
