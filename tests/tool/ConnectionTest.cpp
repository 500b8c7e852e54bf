// An engine that listens but accepts nobody. How long the tool waits for a reply, and what it makes
// of a connection that is slow or breaks, is in FaultMatrixTest.cpp.

#include "tests/support/PrivateNetwork.h"
#include "tests/support/Tool.h"
#include "tests/tool/FullListener.h"
#include "tests/tool/Texts.h"

#include <gtest/gtest.h>

#include <future>

TEST(Connection, IsReportedAsTimedOutIfNobodyAccepts)
{
    const FullListener listener;
    ShortenConnectTimeout();

    // At the same time, as each takes minutes where the system's patience cannot be shortened.
    const auto run = [](const char* commandLine) {
        return std::async(std::launch::async, [=] { return RunTool(Words(commandLine)); });
    };
    std::future<Outcome> update = run("--update");
    std::future<Outcome> list = run("--list");
    std::future<Outcome> start = run("--start abc");

    EXPECT_EQ(update.get(), (Outcome{69, noAnswer, ""}));
    EXPECT_EQ(list.get(), (Outcome{69, noAnswer, ""}));
    EXPECT_EQ(start.get(), (Outcome{76, noAnswer + debugModeIsOff, emptyReply}));
}
