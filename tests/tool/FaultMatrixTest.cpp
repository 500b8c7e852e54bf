// Every exchange of every command, with an engine that misbehaves in every way we know of.
//
// A row of the table says what the engine does in place of its reply and what the tool makes of it:
// nothing is wrong (good), or the reply cannot be read for the reason given, in POCO's words.
// Replies that are cut off at any byte are tried in tests/unit/TruncatedReplyTest.cpp.

#include "tests/support/ScriptedEngine.h"
#include "tests/support/Tool.h"
#include "tests/tool/Scenarios.h"
#include "tests/tool/Texts.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <iterator>
#include <optional>
#include <tuple>

using namespace std::chrono_literals;

namespace {

const std::string good;
const std::string endOfText = poco.EndOfText();
const std::string excess = "JSON Exception: Excess characters found after JSON end.";
const std::string tooDeep = poco.nestingIsLimited ? "JSON Exception: Maximum depth exceeded" : good;
const std::string noObject = "JSON Exception: Attempt to set value on an empty stack";

// The type names are the compiler's.
const std::string notAnObject =
    "Bad cast exception: Can not convert "
    "N4Poco9SharedPtrINS_4JSON5ArrayENS_16ReferenceCounterENS_13ReleasePolicyIS2_EEEE to "
    "N4Poco9SharedPtrINS_4JSON6ObjectENS_16ReferenceCounterENS_13ReleasePolicyIS2_EEEE.";

enum class Manner { Ordinary, Unread, KeptOpen };
constexpr Manner unread = Manner::Unread;     // the engine does not read its request
constexpr Manner keptOpen = Manner::KeptOpen; // the engine leaves it to the tool to give up

struct Fault
{
    const char* name;
    std::function<Script(const std::string& reply)> engine;
    std::string reason;
    Manner manner = Manner::Ordinary;
};

/// Reads the request and sends the reply, or what is left of it.
Script Answer(std::string bytes)
{
    Script script; // returned without a copy of the bytes, of which there may be many
    script.AwaitRequest().Send(std::move(bytes));
    return script;
}

std::string Half(const std::string& reply)
{
    return reply.substr(0, reply.size() / 2);
}

std::string PaddedTo(std::size_t size, std::string reply)
{
    reply.resize(size, ' ');
    return reply;
}

/// A reply of the same meaning with another member in front.
std::string WithMember(const std::string& reply, const std::string& member)
{
    return "{" + member + "," + reply.substr(1);
}

/// Nested arrays in a member that nobody reads; the root object is one level too.
std::string Nested(std::size_t levels, const std::string& reply)
{
    return WithMember(reply,
                      "\"x\":" + std::string(levels - 1, '[') + std::string(levels - 1, ']'));
}

// clang-format off
const Fault faultTable[] = {
    // The connection ends early.
    {"ClosedUnread",         [](auto&)   { return Script().CloseWithoutReading(); }, endOfText, unread},
    {"ClosedWithoutReply",   [](auto&)   { return Answer(""); }, endOfText},
    {"ClosedInReply",        [](auto& r) { return Answer(r.substr(0, r.find(':') + 1)); }, endOfText},
    {"ResetUnread",          [](auto&)   { return Script().Reset(); }, endOfText, unread},
    {"ResetBeforeReply",     [](auto&)   { return Script().AwaitRequest().Reset(); }, endOfText},
    {"ResetInReply",         [](auto& r) { return Answer(Half(r)).Reset(); }, endOfText},
    {"ResetAfterReply",      [](auto& r) { return Answer(r).Reset(); }, endOfText},
    {"ResetAfterWholeBlock", [](auto& r) { return Answer(PaddedTo(8192, r)).Reset(); }, good},

    // The connection does not end.
    {"Silent",               [](auto&)   { return Answer("").AwaitClientClose(); }, endOfText, keptOpen},
    {"SilentInReply",        [](auto& r) { return Answer(Half(r)).AwaitClientClose(); }, endOfText, keptOpen},
    {"SilentAfterReply",     [](auto& r) { return Answer(r).AwaitClientClose(); }, endOfText, keptOpen},
    {"SilentAfterWholeBlock",
                             [](auto& r) { return Answer(PaddedTo(8192, r)).AwaitClientClose(); },
                             good, keptOpen},
    {"SilentAfterThreeBlocksAndAByte",
                             [](auto& r) { return Answer(PaddedTo(24577, r)).AwaitClientClose(); },
                             good, keptOpen},
    {"SilentJustBeforeBlock",
                             [](auto& r) { return Answer(PaddedTo(8191, r)).AwaitClientClose(); },
                             endOfText, keptOpen},
    {"SilentInSecondBlock",  [](auto& r) { return Answer(std::string(8192, ' ') + r).AwaitClientClose(); },
                             endOfText, keptOpen},
    {"WaitsForClientToClose",[](auto& r) { return Script().AwaitClientClose().Send(r); }, endOfText, keptOpen},

    // The connection is slow.
    {"SlowerThanTheWait",    [](auto& r) { return Answer("{").SendInPieces(r.substr(1, 1), 1, 6s)
                                                  .AwaitClientClose(); }, endOfText},
    {"FasterThanTheWait",    [](auto& r) { return Answer("").SendInPieces(r, r.size() / 2, 2600ms); },
                             good},
    {"ByteByByte",           [](auto& r) { return Answer("").SendInPieces(r, 1, 1ms); }, good},

    // The connection is unusual but valid.
    {"HalfClosed",           [](auto& r) { return Answer(r).HalfClose().AwaitClientClose(); }, good},
    {"RepliesBeforeItReads", [](auto& r) { return Script().Send(r); }, good},

    // The reply is no JSON.
    {"OnlySpaces",           [](auto&)   { return Answer("   \n"); }, poco.EndOfText(2)},
    {"OneBrace",             [](auto&)   { return Answer("{"); }, endOfText},
    {"Garbage",              [](auto&)   { return Answer("\x01\x7f\xfe garbage"); }, poco.UnexpectedByte('\x01')},
    {"Text",                 [](auto&)   { return Answer("everything is fine\n"); }, poco.UnexpectedByte('e')},
    {"NulByte",              [](auto& r) { return Answer(std::string(1, '\0') + r); }, poco.UnexpectedByte('\0')},
    {"NulAfter",             [](auto& r) { return Answer(r + std::string(1, '\0')); }, excess},
    {"InvalidUtf8",          [](auto& r) { return Answer(WithMember(r, "\"x\":\"\xc3\x28\"")); }, poco.InvalidUtf8()},
    {"ByteOrderMark",        [](auto& r) { return Answer("\xef\xbb\xbf" + r); }, poco.UnexpectedByte('\xef')},
    {"TextAfter",            [](auto& r) { return Answer(r + "x"); }, excess},
    {"ObjectAfter",          [](auto& r) { return Answer(r + "{}"); }, excess},
    {"CommaTooMany",         [](auto& r) { return Answer(r.substr(0, r.size() - 1) + ",}"); }, poco.UnexpectedByte('}')},
    {"SingleQuotes",         [](auto& r) { return Answer(WithMember(r, "'x':1")); }, poco.UnexpectedByte('\'')},
    {"Comment",              [](auto& r) { return Answer("/* */" + r); }, poco.UnexpectedByte('/')},
    {"NumberTooLong",        [](auto& r) { return Answer(WithMember(r, "\"x\":99999999999999999999999")); },
                             "Syntax error: Not a valid unsigned integer: 99999999999999999999999"},

    // The reply is no object.
    {"TextRoot",             [](auto&)   { return Answer("\"text\""); }, noObject},
    {"NumberRoot",           [](auto&)   { return Answer("1"); }, noObject},
    {"TrueRoot",             [](auto&)   { return Answer("true"); }, noObject},
    {"NullRoot",             [](auto&)   { return Answer("null"); }, noObject},
    {"ArrayRoot",            [](auto& r) { return Answer("[" + r + "]"); }, notAnObject},

    // The reply is unusual but valid.
    {"ByteFFAfter",          [](auto& r) { return Answer(r + "\xff and more"); }, good},
    {"SpacesAround",         [](auto& r) { return Answer("\r\n\t " + r + "\r\n\t "); }, good},
    {"DuplicateKeys",        [](auto& r) { return Answer(WithMember(r,
                                 R"("resultCode":9,"description":"first","debugModeEnabled":false)")); },
                             good},
    {"OneBlock",             [](auto& r) { return Answer(PaddedTo(8192, r)); }, good},
    {"OneBlockAndAByte",     [](auto& r) { return Answer(PaddedTo(8193, r)); }, good},
    {"OneMebibyte",          [](auto& r) { return Answer(std::string(1 << 20, ' ') + r); }, good},

    // The reply is nested.
    {"Nested128",            [](auto& r) { return Answer(Nested(128, r)); }, good},
    {"Nested129",            [](auto& r) { return Answer(Nested(129, r)); }, tooDeep},
    {"Nested100000",         [](auto& r) { return Answer(Nested(100000, r)); }, tooDeep},
};
// clang-format on

using Cell = std::tuple<const Scenario*, const Fault*>;

class FaultMatrix: public testing::TestWithParam<Cell>
{
};

class RefusedExchange: public testing::TestWithParam<const Scenario*>
{
};

const auto eachScenario =
    testing::Range(Scenarios().data(), Scenarios().data() + Scenarios().size());

} // namespace

TEST_P(FaultMatrix, EndsAsTheTableSays)
{
    const Scenario& scenario = *std::get<const Scenario*>(GetParam());
    const Fault& fault = *std::get<const Fault*>(GetParam());
    ScriptedEngine engine;
    scenario.ServeUpToFault(engine);
    engine.OnConnection(fault.engine(scenario.Reply()));
    scenario.ServeAfterFault(engine);

    const Outcome outcome = RunTool(scenario.commandLine);

    const bool isGood = fault.reason == good;
    EXPECT_EQ(outcome, isGood ? scenario.good : scenario.Unreadable(fault.reason));
    if (fault.manner == Manner::Unread) {
        // The tool has sent its request all the same.
        EXPECT_EQ(engine.Connections().size(), scenario.faulty + 1);
    } else {
        EXPECT_EQ(engine.Requests(), isGood ? scenario.requests : scenario.RequestsUpToFault());
    }
    if (fault.manner == Manner::KeptOpen) {
        const double patience = engine.Connections().at(scenario.faulty).patience.count();
        EXPECT_GT(patience, 4.5);
        EXPECT_LT(patience, 60);
    }
}

INSTANTIATE_TEST_SUITE_P(Faults, FaultMatrix,
                         testing::Combine(eachScenario, testing::Range(std::begin(faultTable),
                                                                       std::end(faultTable))),
                         [](const auto& cell) {
                             return std::get<0>(cell.param)->name + "_" +
                                    std::get<1>(cell.param)->name;
                         });

TEST_P(RefusedExchange, EndsTheRun)
{
    const Scenario& scenario = *GetParam();
    std::optional<ScriptedEngine> engine;
    if (scenario.faulty > 0) {
        engine.emplace();
        scenario.ServeUpToFault(*engine);
        engine->StopListeningAfter(scenario.faulty);
    }

    EXPECT_EQ(RunTool(scenario.commandLine), scenario.Refused());
}

INSTANTIATE_TEST_SUITE_P(Faults, RefusedExchange, eachScenario,
                         [](const auto& scenario) { return scenario.param->name; });
