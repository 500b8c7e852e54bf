// The simulator's socket: where it listens, and many clients at once.

#include "tests/sim/e2e/Client.h"
#include "tests/sim/e2e/Simulator.h"
#include "tests/support/EngineAddress.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

const char* const statusRequest = R"({"command":"update-status"})";
const Answer statusAnswer = {R"({"description":"No update has been requested","resultCode":0})"};
const std::string statusLine = LogLine(statusRequest, statusAnswer.bytes);

std::string Name(std::size_t number)
{
    return "m" + std::to_string(number);
}

std::multiset<std::string> LinesOf(const std::string& text)
{
    std::multiset<std::string> lines;
    std::istringstream stream(text);
    for (std::string each; std::getline(stream, each);) {
        lines.insert(each);
    }
    return lines;
}

} // namespace

TEST(SimulatorConnections, AreServedWhileManyOthersAreOpen)
{
    const Simulator simulator;
    std::vector<Client> clients(40);
    for (Client& client : clients) {
        client.Send(R"({"command":"status","module":")");
    }

    EXPECT_EQ(Ask(statusRequest), statusAnswer);

    for (std::size_t i = clients.size(); i-- > 0;) {
        EXPECT_EQ(clients[i].Send(Name(i) + "\"}").Receive(),
                  Refusal(3, R"(Unknown module \")" + Name(i) + R"(\")"));
    }
}

TEST(SimulatorConnections, AtTheSameTimeStillMakeALineEach)
{
    Simulator simulator;
    std::vector<Client> clients(50);
    std::string expected;
    for (std::size_t i = 0; i < clients.size(); ++i) {
        const std::string text = R"({"command":"pid","module":")" + Name(i) + "\"}";
        clients[i].Send(text);
        expected += LogLine(text, Refusal(3, R"(Unknown module \")" + Name(i) + R"(\")").bytes);
    }
    for (Client& client : clients) {
        client.Receive();
    }

    EXPECT_EQ(LinesOf(simulator.End().err), LinesOf(Served(expected).err));
}

TEST(SimulatorConnections, ThatTheClientBreaksDoNotDisturbOthers)
{
    Simulator simulator;

    Client().Send(statusRequest).Reset();
    simulator.AwaitLog(statusLine);
    EXPECT_EQ(Ask(statusRequest), statusAnswer);

    EXPECT_EQ(simulator.End(), Served(statusLine + statusLine));
}

TEST(SimulatorAddress, IsTheOnlyOneItListensOn)
{
    const Simulator simulator;
    const Descriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in other = EngineAddress();
    other.sin_addr.s_addr = htonl(INADDR_LOOPBACK + 1);

    EXPECT_EQ(connect(socket.Get(), reinterpret_cast<const sockaddr*>(&other), sizeof other), -1);
    EXPECT_EQ(errno, ECONNREFUSED);
    EXPECT_EQ(Ask(statusRequest), statusAnswer);
}

TEST(SimulatorAddress, InUseIsOneLineAndStatus69AndLeavesTheOtherAlone)
{
    Simulator first;

    EXPECT_EQ(Simulator().End(),
              Refused(69, "cannot listen: Net Exception: Address already in use: 127.0.0.1:7777"));
    EXPECT_EQ(Ask(statusRequest), statusAnswer);
    EXPECT_EQ(first.End(), Served(statusLine));
}

TEST(SimulatorAddress, CanBeUsedAgainAtOnce)
{
    Simulator first;
    Client open;
    EXPECT_EQ(Ask(statusRequest), statusAnswer);
    first.End();

    const Simulator second;
    EXPECT_EQ(Ask(statusRequest), statusAnswer);
}
