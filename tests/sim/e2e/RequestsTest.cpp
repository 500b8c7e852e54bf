// How requests may arrive, and how the simulator refuses everything else.

#include "tests/sim/e2e/Client.h"
#include "tests/sim/e2e/Simulator.h"

#include <gtest/gtest.h>

#include <ostream>

using std::chrono::milliseconds;

namespace {

const Answer goodAnswer = {pidReply};
const std::string goodLine = LogLine(pidRequest, goodAnswer.bytes);

std::string Nested(std::size_t depth)
{
    std::string opening;
    for (std::size_t i = 0; i < depth; ++i) {
        opening += R"({"a":)";
    }
    return opening + "1" + std::string(depth, '}');
}

struct BadRequest
{
    const char* name;
    std::string text;
    Answer refusal;
};

void PrintTo(const BadRequest& each, std::ostream* stream)
{
    *stream << each.name;
}

std::string NameOfRequest(const testing::TestParamInfo<BadRequest>& info)
{
    return info.param.name;
}

class SimulatorBadRequest: public testing::TestWithParam<BadRequest>
{
};

} // namespace

TEST(SimulatorRequest, MayArriveByteByByte)
{
    const Simulator simulator;

    EXPECT_EQ(Client().SendBytewise(pidRequest).Receive(), goodAnswer);
}

TEST(SimulatorRequest, MayBeFollowedByAHalfClose)
{
    const Simulator simulator;

    EXPECT_EQ(Client().Send(pidRequest).HalfClose().Receive(), goodAnswer);
}

TEST_P(SimulatorBadRequest, IsRefusedAndTheSimulatorGoesOn)
{
    const Simulator simulator;

    EXPECT_EQ(Ask(GetParam().text), GetParam().refusal);
    EXPECT_EQ(Ask(pidRequest), goodAnswer);
}

INSTANTIATE_TEST_SUITE_P(
    With, SimulatorBadRequest,
    testing::Values(BadRequest{"NoObject", "hello", Refusal(1, "The request is not a JSON object")},
                    BadRequest{
                        "InvalidJson", "{\"command\":\xfe}",
                        Refusal(1, "The request is not valid JSON: unexpected byte '?' in value")},
                    BadRequest{"TooManyLevels", Nested(2000),
                               Refusal(1, "The request is not valid JSON: Maximum depth exceeded")},
                    BadRequest{"NoCommand", "{}", Refusal(1, R"(The request has no \"command\")")},
                    // The refusal comes while the client is still sending.
                    BadRequest{"AMebibyte", "{" + std::string(1 << 20, ' '),
                               Refusal(1, "The request is longer than 64 KiB")}),
    NameOfRequest);

TEST(SimulatorRequest, ThatEndsBeforeItIsCompleteIsRefusedAndTheSimulatorGoesOn)
{
    const Answer refusal = Refusal(1, "The request ended before its closing brace");
    const Simulator simulator;

    EXPECT_EQ(Client().HalfClose().Receive(), refusal);
    EXPECT_EQ(Client().Send(R"({"command":"list")").HalfClose().Receive(), refusal);
    EXPECT_EQ(Ask(pidRequest), goodAnswer);
}

TEST(SimulatorRequest, ThatDoesNotArriveWithinFiveSecondsIsRefusedAndTheSimulatorGoesOn)
{
    const Answer refusal = Refusal(1, "The request was not complete within 5 seconds");
    const Simulator simulator;
    Client mute;
    Client stuck;
    Client slow;

    stuck.Send(R"({"command":"list")");
    while (!slow.HearsWithin(milliseconds(200))) { // a byte now and then wins no time
        slow.Send(" ");
    }

    EXPECT_EQ(slow.Receive(), refusal);
    EXPECT_EQ(mute.Receive(), refusal);
    EXPECT_EQ(stuck.Receive(), refusal);
    EXPECT_EQ(Ask(pidRequest), goodAnswer);
}

TEST(SimulatorRequest, ThatIsCompleteAfterFourSecondsIsAnswered)
{
    const Simulator simulator;
    Client late;

    late.Send(pidRequest.substr(0, 5));
    EXPECT_FALSE(late.HearsWithin(milliseconds(4000)));
    late.Send(pidRequest.substr(5));

    EXPECT_EQ(late.Receive(), goodAnswer);
}

TEST(SimulatorRequest, OfAClientThatLeavesDoesNotDisturbTheSimulator)
{
    const Answer refusal = Refusal(1, "The connection broke before the request was complete");
    Simulator simulator;

    Client().Send(R"({"command":)").Reset();
    simulator.AwaitLog("broke");
    EXPECT_EQ(Ask(pidRequest), goodAnswer);

    EXPECT_EQ(simulator.End(), Served(LogLine(R"({"command":)", refusal.bytes) + goodLine));
}

TEST(SimulatorRequest, IsOneLineOfTheLogWhateverIsInIt)
{
    Simulator simulator;

    Ask(pidRequest);
    const Answer toControlCharacters = Ask("{\"command\":\"\033[31mred\n\"}");
    const Answer toNothing = Client().HalfClose().Receive();

    EXPECT_EQ(simulator.End(),
              Served(goodLine + LogLine(R"({"command":"?[31mred?"})", toControlCharacters.bytes) +
                     LogLine("(nothing)", toNothing.bytes)));
}
