// What the simulator takes as a request, and what it says to everything else.

#include "tests/sim/e2e/Client.h"
#include "tests/sim/e2e/Simulator.h"

#include <gtest/gtest.h>

#include <ostream>

using std::chrono::milliseconds;

namespace {

const std::string goodRequest = R"({"command":"pid","module":"pump1"})";
const Answer goodAnswer = {R"({"description":"1004","resultCode":0})"};
const std::string goodLine = LogLine(goodRequest, goodAnswer.bytes);

constexpr std::size_t limit = 65536;

/// The good request, made longer by a member that means nothing.
std::string RequestOfSize(std::size_t size)
{
    const std::string begin = R"({"command":"pid","module":"pump1","padding":")";
    const std::string end = "\"}";
    return begin + std::string(size - begin.size() - end.size(), 'x') + end;
}

std::string Nested(std::size_t depth)
{
    std::string opening;
    for (std::size_t i = 0; i < depth; ++i) {
        opening += R"({"a":)";
    }
    return opening + "1" + std::string(depth, '}');
}

struct Case
{
    const char* name;
    std::string request;
    Answer answer = goodAnswer;
};

void PrintTo(const Case& each, std::ostream* stream)
{
    *stream << each.name;
}

std::string NameOf(const testing::TestParamInfo<Case>& info)
{
    return info.param.name;
}

class SimulatorGoodRequest: public testing::TestWithParam<Case>
{
};

class SimulatorBadRequest: public testing::TestWithParam<Case>
{
};

} // namespace

TEST_P(SimulatorGoodRequest, IsAnswered)
{
    const Simulator simulator;

    EXPECT_EQ(Ask(GetParam().request), GetParam().answer);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, SimulatorGoodRequest,
    testing::Values(
        Case{"KeysInOneOrder", goodRequest},
        Case{"KeysInTheOther", R"({"module":"pump1","command":"pid"})"},
        Case{"BlanksAnywhere", " \r\n\t{ \"command\" : \"pid\" ,\n\"module\":\"pump1\" }"},
        Case{"MoreAfterItsEnd", goodRequest + "} and {\"more\""},
        Case{"BracesAndQuotesInAString",
             R"({"padding":"}\"}{\\","command":"pid","module":"pump1"})"},
        Case{"ObjectsInside", R"({"padding":{"a":{}},"command":"pid","module":"pump1"})"},
        Case{"AsLongAsAllowed", RequestOfSize(limit)}),
    NameOf);

TEST(SimulatorRequest, MayArriveByteByByte)
{
    const Simulator simulator;

    EXPECT_EQ(Client().SendBytewise(goodRequest).Receive(), goodAnswer);
}

TEST(SimulatorRequest, MayBeFollowedByAHalfClose)
{
    const Simulator simulator;

    EXPECT_EQ(Client().Send(goodRequest).HalfClose().Receive(), goodAnswer);
}

TEST_P(SimulatorBadRequest, IsRefusedInWordsAndTheSimulatorGoesOn)
{
    const Simulator simulator;

    EXPECT_EQ(Ask(GetParam().request), GetParam().answer);
    EXPECT_EQ(Ask(goodRequest), goodAnswer);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, SimulatorBadRequest,
    testing::Values(
        Case{"Words", "hello", Refusal(1, "The request is not a JSON object")},
        Case{"Array", R"([{"command":"list"}])", Refusal(1, "The request is not a JSON object")},
        Case{"String", R"("list")", Refusal(1, "The request is not a JSON object")},
        Case{"ClosingBrace", "}", Refusal(1, "The request is not a JSON object")},
        Case{"MissingValue", R"({"command":})",
             Refusal(1, "The request is not valid JSON: unexpected byte '}' in value")},
        Case{"BytesThatAreNotUtf8", "{\"command\":\"pid\",\"module\":\"\xff\"}",
             Refusal(1, "The request is not valid JSON: unterminated string literal")},
        Case{"TooDeep", Nested(2000),
             Refusal(1, "The request is not valid JSON: Maximum depth exceeded")},
        Case{"EmptyObject", "{}", Refusal(1, R"(The request has no \"command\")")},
        Case{"NoCommand", R"({"module":"pump1"})", Refusal(1, R"(The request has no \"command\")")},
        Case{"CommandThatIsANumber", R"({"command":7})",
             Refusal(1, R"(\"command\" is not the name of a command)")},
        Case{"ByteThatIsNoCharacter", "{\"command\":\xfe}",
             Refusal(1, "The request is not valid JSON: unexpected byte '?' in value")},
        Case{"UnknownCommand", R"({"command":"dance"})",
             Refusal(2, R"(Unknown command \"dance\")")},
        Case{"ByteTooLong", RequestOfSize(limit + 1),
             Refusal(1, "The request is longer than 64 KiB")},
        Case{"MuchTooLong", RequestOfSize(16 * limit),
             Refusal(1, "The request is longer than 64 KiB")},
        Case{"EndlessBlanks", std::string(limit + 1, ' '),
             Refusal(1, "The request is longer than 64 KiB")}),
    NameOf);

TEST(SimulatorRequest, ThatEndsBeforeItIsCompleteIsRefusedAndTheSimulatorGoesOn)
{
    const Answer refusal = Refusal(1, "The request ended before its closing brace");
    const Simulator simulator;

    EXPECT_EQ(Client().HalfClose().Receive(), refusal);
    EXPECT_EQ(Client().Send(R"({"command":"list")").HalfClose().Receive(), refusal);
    EXPECT_EQ(Ask(goodRequest), goodAnswer);
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
    EXPECT_EQ(Ask(goodRequest), goodAnswer);
}

TEST(SimulatorRequest, ThatIsCompleteAfterFourSecondsIsAnswered)
{
    const Simulator simulator;
    Client late;

    late.Send(goodRequest.substr(0, 5));
    EXPECT_FALSE(late.HearsWithin(milliseconds(4000)));
    late.Send(goodRequest.substr(5));

    EXPECT_EQ(late.Receive(), goodAnswer);
}

TEST(SimulatorRequest, OfAClientThatLeavesDoesNotDisturbTheSimulator)
{
    const Answer refusal = Refusal(1, "The connection broke before the request was complete");
    Simulator simulator;

    Client().Send(R"({"command":)").Reset();
    simulator.AwaitLog("broke");
    EXPECT_EQ(Ask(goodRequest), goodAnswer);

    EXPECT_EQ(simulator.End(), Served(LogLine(R"({"command":)", refusal.bytes) + goodLine));
}

TEST(SimulatorRequest, IsOneLineOfTheLogWhateverIsInIt)
{
    Simulator simulator;

    Ask(goodRequest);
    const Answer toControlCharacters = Ask("{\"command\":\"\033[31mred\n\"}");
    const Answer toNothing = Client().HalfClose().Receive();

    EXPECT_EQ(simulator.End(),
              Served(goodLine + LogLine(R"({"command":"?[31mred?"})", toControlCharacters.bytes) +
                     LogLine("(nothing)", toNothing.bytes)));
}
