// How the simulator is ended: by either signal, whatever its clients are doing.

#include "tests/sim/e2e/Client.h"
#include "tests/sim/e2e/Simulator.h"

#include <gtest/gtest.h>

namespace {

const char* const list = R"({"command":"list"})";

class SimulatorEnd: public testing::TestWithParam<int>
{
};

std::string NameOfSignal(const testing::TestParamInfo<int>& info)
{
    return info.param == SIGINT ? "Interrupt" : "Termination";
}

} // namespace

TEST_P(SimulatorEnd, IsCleanWithoutClients)
{
    EXPECT_EQ(Simulator().End(GetParam()), Served(""));
}

TEST_P(SimulatorEnd, DoesNotWaitForARequest)
{
    Simulator simulator;
    const Client idle;
    Client half;
    half.Send(R"({"command":)");

    const Outcome outcome = simulator.End(GetParam());

    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.err.find("5 seconds"), std::string::npos) << outcome.err;
}

TEST_P(SimulatorEnd, DoesNotWaitForAClientThatWaitsForAnAnswer)
{
    Simulator simulator({"--fault=silent"});
    Client client;
    client.Send(list);
    simulator.AwaitLog(list);

    const Outcome outcome = simulator.End(GetParam());

    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(client.Receive(), Answer{});
}

TEST_P(SimulatorEnd, DoesNotWaitForAClientThatDoesNotRead)
{
    Simulator simulator({"--fault=huge"});
    Client client;
    client.Send(list);
    simulator.AwaitLog(list);

    const Outcome outcome = simulator.End(GetParam());

    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_LT(client.Receive().bytes.size(), 6U * 1024 * 1024);
}

TEST_P(SimulatorEnd, CutsASlowReplyShort)
{
    Simulator simulator({"--fault=slow"});
    Client client;
    client.Send(list);
    simulator.AwaitLog(list);

    const Outcome outcome = simulator.End(GetParam());

    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(client.Receive().bytes.find(R"("services")"), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(By, SimulatorEnd, testing::Values(SIGINT, SIGTERM), NameOfSignal);
