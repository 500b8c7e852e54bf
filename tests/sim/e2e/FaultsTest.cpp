// Each fault, as the tool shows it and as it is on the wire.

#include "tests/sim/Repeated.h"
#include "tests/sim/e2e/Client.h"
#include "tests/sim/e2e/Simulator.h"
#include "tests/sim/e2e/TemporaryFile.h"
#include "tests/support/Tool.h"
#include "tests/tool/Texts.h"

#include <gtest/gtest.h>

#include <ostream>

namespace {

// Debug mode is on, so that the gate lets a command through wherever the fault does; the set is
// small, so that a slow reply has an end.
const char* const state = R"({
    "engine": {"state": "running", "version": "1", "safeModeEnabled": false,
               "debugModeEnabled": true},
    "services": [],
    "modules": [{"name": "m1", "state": "stopped", "version": "2"}]})";

const std::string reply =
    R"({"debugModeEnabled":true,"description":"Status of the engine","resultCode":0,)"
    R"("safeModeEnabled":false,"state":"running","version":"1"})";
const std::string replyWithoutResultCode =
    R"({"debugModeEnabled":true,"description":"Status of the engine",)"
    R"("safeModeEnabled":false,"state":"running","version":"1"})";
const std::string halfReply =
    R"({"debugModeEnabled":true,"description":"Status of the engine","res)";

const std::string statusReport = "Vantrel status\n"
                                 "------------------------------\n"
                                 "Safe mode:     disabled       \n"
                                 "Debug mode:    enabled        \n"
                                 "State:         running        \n"
                                 "Version:       1              \n"
                                 "Build info:    <not available>\n"
                                 "\n";
const std::string statusReportWithoutValues = "Vantrel status\n"
                                              "------------------------------\n"
                                              "Safe mode:     ";
const std::string listReport = "SERVICE NAME             STATE          VERSION        \n"
                               "-------------------------------------------------------\n"
                               "None are loaded!\n"
                               "\n"
                               "MODULE NAME              STATE          VERSION        \n"
                               "-------------------------------------------------------\n"
                               "m1                       stopped        2              \n"
                               "\n";
const std::string started = "m1 was started\n";

const std::string cutOffInAString = badReply + "JSON Exception: unterminated string literal\n";
const std::string words = badReply + "JSON Exception: unexpected byte 'T' in value\n";
const std::string anArray =
    badReply +
    "Bad cast exception: Can not convert "
    "N4Poco9SharedPtrINS_4JSON5ArrayENS_16ReferenceCounterENS_13ReleasePolicyIS2_EEEE to "
    "N4Poco9SharedPtrINS_4JSON6ObjectENS_16ReferenceCounterENS_13ReleasePolicyIS2_EEEE.\n";

struct Symptoms
{
    const char* fault;
    Outcome engineStatus;
    Outcome list;
    Outcome start;
    Answer wire; // to a request for the status of the engine
};

const Symptoms allSymptoms[] = {
    {"close",
     {76, "", emptyReply},
     {76, "", emptyReply},
     {76, debugModeIsOff, emptyReply},
     {"", Answer::End::Closed}},
    {"slow",
     {0, statusReport, ""},
     {0, listReport, ""},
     {0, started, ""},
     {reply, Answer::End::Closed}},
    {"half",
     {76, "", cutOffInAString},
     {76, "", emptyReply},
     {76, debugModeIsOff, cutOffInAString},
     {halfReply, Answer::End::Closed}},
    {"garbage",
     {76, "", words},
     {76, "", words},
     {76, debugModeIsOff, words},
     {"This is not JSON", Answer::End::Closed}},
    {"wrong-type",
     {76, "", anArray},
     {76, "", anArray},
     {76, debugModeIsOff, anArray},
     {"[" + reply + "]", Answer::End::Closed}},
    {"no-result-code",
     {76, statusReport, missingValue},
     {76, "", missingValue},
     {76, started, missingValue},
     {replyWithoutResultCode, Answer::End::Closed}},
    {"error-code",
     {76, statusReportWithoutValues, missingValue},
     {6, "", "Refused on purpose\n"},
     {76, debugModeIsOff, missingValue},
     Refusal(6, "Refused on purpose")},
    // Part of a block that the connection breaks off in is lost to the tool.
    {"reset",
     {76, "", emptyReply},
     {76, "", emptyReply},
     {76, debugModeIsOff, emptyReply},
     {halfReply, Answer::End::Reset}},
};

class SimulatorFault: public testing::TestWithParam<Symptoms>
{
protected:
    const TemporaryFile file{state};
    Simulator simulator{{"--state=" + file.Path(), std::string("--fault=") + GetParam().fault}};
};

class SimulatorSilence: public testing::TestWithParam<const char*>
{
};

std::string Identifier(const std::string& text)
{
    std::string identifier;
    for (const char c : text) {
        identifier += c == '-' ? '_' : c;
    }
    return identifier;
}

void PrintTo(const Symptoms& each, std::ostream* stream)
{
    *stream << each.fault;
}

std::string NameOfSymptoms(const testing::TestParamInfo<Symptoms>& info)
{
    return Identifier(info.param.fault);
}

std::string NameOfCommand(const testing::TestParamInfo<const char*>& info)
{
    return Identifier(info.param);
}

Outcome ListOf(const std::vector<std::string>& arguments)
{
    const Simulator simulator(arguments);
    return RunTool({"--list"});
}

} // namespace

TEST_P(SimulatorFault, ShowsInTheEngineStatus)
{
    EXPECT_EQ(RunTool({"--engine-status"}), GetParam().engineStatus);
}

TEST_P(SimulatorFault, ShowsInTheList)
{
    EXPECT_EQ(RunTool({"--list"}), GetParam().list);
}

TEST_P(SimulatorFault, ShowsInAGatedCommand)
{
    EXPECT_EQ(RunTool({"--start", "m1"}), GetParam().start);
}

TEST_P(SimulatorFault, IsOnTheWireAsItsNameSays)
{
    EXPECT_EQ(Ask(engineStatusRequest), GetParam().wire);
}

INSTANTIATE_TEST_SUITE_P(Called, SimulatorFault, testing::ValuesIn(allSymptoms), NameOfSymptoms);

TEST(SimulatorFaultClose, DoesNotWaitForARequest)
{
    Simulator simulator({"--fault=close"});

    EXPECT_EQ(Client().Receive(), Answer{});

    EXPECT_EQ(simulator.End(), Served(LogLine("(nothing)", "(nothing) [close]")));
}

TEST(SimulatorFaultSlow, SendsEachByteOnItsOwn)
{
    const Simulator simulator({"--fault=slow"});
    Client client;

    const Answer answer = client.Send(R"({"command":"pid","module":"pump1"})").Receive();

    EXPECT_EQ(answer, (Answer{R"({"description":"1004","resultCode":0})"}));
    EXPECT_EQ(client.SegmentsReceived(), answer.bytes.size());
}

TEST(SimulatorFaultErrorCode, RefusesWhatWouldBeDoneOtherwise)
{
    const Simulator simulator({"--fault=error-code"});

    EXPECT_EQ(RunTool({"--debug", "true"}), (Outcome{6, "Refused on purpose\n", ""}));
    EXPECT_EQ(RunTool({"--pid", "pump1"}), (Outcome{6, "Refused on purpose\n", ""}));
    EXPECT_EQ(RunTool({"--update"}), (Outcome{6, "Refused on purpose\n", ""}));
}

TEST(SimulatorFaultHuge, ListsManyMegabytes)
{
    const std::string row =
        "huge                     running        yes            1.0.0          \n";
    Outcome expected = ListOf({});
    expected.out.insert(expected.out.find("pump1 "), Repeated(row, 100000));

    const Outcome outcome = ListOf({"--fault=huge"});

    EXPECT_TRUE(outcome == expected)
        << "status " << outcome.status << ", " << outcome.out.size() << " bytes, begins with\n"
        << outcome.out.substr(0, 1000) << "stderr: " << outcome.err;
}

TEST(SimulatorFaultHuge, LeavesOtherCommandsAlone)
{
    const Simulator simulator({"--fault=huge"});

    EXPECT_EQ(RunTool({"--pid", "pump1"}), (Outcome{0, "1004\n", ""}));
}

TEST_P(SimulatorSilence, EndsInAnEmptyReplyAfterTheToolsPatience)
{
    const Simulator simulator({"--fault=silent"});

    EXPECT_EQ(RunTool({std::string("--") + GetParam()}), (Outcome{76, "", emptyReply}));
}

INSTANTIATE_TEST_SUITE_P(Of, SimulatorSilence, testing::Values("engine-status", "list"),
                         NameOfCommand);

TEST(SimulatorFaultSilent, EndsAGatedCommandAtItsGate)
{
    const Simulator simulator({"--fault=silent"});

    EXPECT_EQ(RunTool({"--start", "pump1"}), (Outcome{76, debugModeIsOff, emptyReply}));
}

TEST(SimulatorFaultSilent, ReadsTheRequestAndSaysNothingUntilTheClientLeaves)
{
    Simulator simulator({"--fault=silent"});
    Client client;

    client.Send(engineStatusRequest);
    simulator.AwaitLog(engineStatusRequest);

    EXPECT_EQ(client.HalfClose().Receive(), Answer{});
    EXPECT_EQ(simulator.End(), Served(LogLine(engineStatusRequest, "(nothing) [silent]")));
}
