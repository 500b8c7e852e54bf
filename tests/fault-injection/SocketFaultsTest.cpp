// Every socket call of a run fails, one at a time. "start" makes two exchanges, so each call is
// made for the debug-mode query first and for the command after it.

#include "tests/fault-injection/InjectedFault.h"
#include "tests/support/ScriptedEngine.h"
#include "tests/support/Tool.h"
#include "tests/tool/Texts.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <iterator>

namespace {

constexpr const char* startRequest = R"({"command":"start","module":"abc"})";

// What a failed call makes of the run, by the exchange it belongs to.
enum class Effect {
    None,         // the call is made again, or its failure means nothing
    NoConnection, // the request is not sent
    NoReply,      // the request is sent, the reply is lost
    Unreachable,  // the request is sent, and yet the engine counts as unreachable
};

struct Row
{
    const char* name;
    const char* call;
    const char* message; // of a failed connection
    int error;
    int callsPerExchange;
    Effect effect;
    int times = 1;
};

// clang-format off
const Row table[] = {
    {"NoDescriptorLeft",         "socket",     "I/O error",          EMFILE,       1, Effect::NoConnection},
    {"NoSocketMemory",           "socket",     "I/O error",          ENOBUFS,      1, Effect::NoConnection},
    {"ConnectRefused",           "connect",    "Connection refused", ECONNREFUSED, 1, Effect::NoConnection},
    {"ConnectUnreachable",       "connect",    "Net Exception",      ENETUNREACH,  1, Effect::NoConnection},
    {"ConnectTimedOut",          "connect",    "Timeout",            ETIMEDOUT,    1, Effect::NoConnection},
    {"ConnectInterrupted",       "connect",    "",                   EINTR,        1, Effect::None},
    {"SendInterrupted",          "send",       "",                   EINTR,        1, Effect::None},
    {"SendFailsOnce",            "send",       "",                   ENOBUFS,      1, Effect::None},
    {"TimeoutNotSet",            "setsockopt", "Invalid argument",   EINVAL,       1, Effect::Unreachable},
    {"BlockingModeNotSet",       "fcntl",      "I/O error",          EBADF,        2, Effect::Unreachable},
    {"ReceiveInterrupted",       "recv",       "",                   EINTR,        2, Effect::None},
    {"ReceiveInterruptedOften",  "recv",       "",                   EINTR,        2, Effect::None, 20},
    {"ReceiveReset",             "recv",       "",                   ECONNRESET,   2, Effect::NoReply},
    {"ReceiveTimedOut",          "recv",       "",                   EAGAIN,       2, Effect::NoReply},
    {"ReceiveWithoutMemory",     "recv",       "",                   ENOMEM,       2, Effect::NoReply},
    {"CloseFails",               "close",      "",                   EIO,          1, Effect::None},
};
// clang-format on

std::string TransportFailure(const std::string& message)
{
    const char* const line = message == "Timeout" ? "Vantrel failed to respond in time: "
                                                  : "Failed to connect to Vantrel at ";
    return line + ("127.0.0.1:7777; " + message + "\n");
}

Outcome ExpectedOutcome(const Row& row, bool inQuery)
{
    const bool transport = row.effect == Effect::NoConnection || row.effect == Effect::Unreachable;
    const std::string line = transport ? TransportFailure(row.message) : "";
    if (row.effect == Effect::None) {
        return {0, "ok\n", ""};
    }
    if (inQuery) {
        return {76, line + debugModeIsOff, emptyReply};
    }
    return transport ? Outcome{69, line, ""} : Outcome{76, "", emptyReply};
}

std::vector<std::string> ExpectedRequests(const Row& row, bool inQuery)
{
    if (row.effect == Effect::NoConnection) {
        return inQuery ? std::vector<std::string>{} : std::vector<std::string>{engineStatusRequest};
    }
    return inQuery && row.effect != Effect::None
               ? std::vector<std::string>{engineStatusRequest}
               : std::vector<std::string>{engineStatusRequest, startRequest};
}

class SocketFaults: public testing::TestWithParam<const Row*>
{
protected:
    void SetUp() override { UseBuiltTool(); }
};

} // namespace

TEST_P(SocketFaults, EndAsTheTableSays)
{
    const Row& row = *GetParam();
    const int lastCall = 2 * row.callsPerExchange;
    for (int nth = 1; nth <= lastCall; ++nth) {
        SCOPED_TRACE(std::string(row.call) + " number " + std::to_string(nth));
        const bool inQuery = nth <= row.callsPerExchange;
        ScriptedEngine engine{debugModeOn, accepted};
        const auto fault = InjectedFault::OfCall(row.call, nth, row.error, row.times);

        EXPECT_EQ(RunTool(Words("--start abc")), ExpectedOutcome(row, inQuery));

        EXPECT_TRUE(fault.Happened());
        EXPECT_EQ(engine.Requests(), ExpectedRequests(row, inQuery));
    }

    ScriptedEngine engine{debugModeOn, accepted};
    const auto fault = InjectedFault::OfCall(row.call, lastCall + 1, row.error);
    EXPECT_EQ(RunTool(Words("--start abc")), (Outcome{0, "ok\n", ""}));
    EXPECT_FALSE(fault.Happened()) << "there are more calls than the table knows";
}

INSTANTIATE_TEST_SUITE_P(Table, SocketFaults, testing::Range(std::begin(table), std::end(table)),
                         [](const auto& row) { return row.param->name; });

TEST_F(SocketFaults, OfASendThatNeverSucceedsEndLikeASilentEngine)
{
    ScriptedEngine engine;
    engine.OnConnection(Script().AwaitRequest().AwaitClientClose());
    const auto fault = InjectedFault::OfCall("send", 1, EPIPE, 100);

    EXPECT_EQ(RunTool({"--update"}), (Outcome{76, "", emptyReply}));

    EXPECT_EQ(engine.Requests(), std::vector<std::string>{""});
}

TEST_F(SocketFaults, OfSendsThatMoveOneByteChangeNothing)
{
    ScriptedEngine engine{debugModeOn, accepted};
    const auto fault = InjectedFault::ShortSends(1);

    EXPECT_EQ(RunTool(Words("--start abc")), (Outcome{0, "ok\n", ""}));

    EXPECT_EQ(engine.Requests(), (std::vector<std::string>{engineStatusRequest, startRequest}));
}

TEST(SocketSettings, AreTheTimeoutThenTheBlockingMode)
{
    UseBuiltTool();
    ScriptedEngine engine{debugModeOn, accepted};
    const auto fault = InjectedFault::None();

    EXPECT_EQ(RunTool(Words("--start abc")), (Outcome{0, "ok\n", ""}));

    EXPECT_EQ(fault.SocketSettings(), "wait 5000000\nflags\nwait 5000000\nflags\n");
}
