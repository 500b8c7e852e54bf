#include "tests/sim/TestEngine.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <thread>

using std::chrono::milliseconds;
using std::chrono::seconds;

TEST(SimEngine, ListsServicesAndModules)
{
    TestEngine engine(sim::ReadState(R"({
        "engine": {"state": "running", "version": "1", "safeModeEnabled": false,
                   "debugModeEnabled": false},
        "services": [{"name": "s1", "state": "running", "version": "1.0"}],
        "modules": [{"name": "m1", "state": "stopped", "version": "2.0", "monitored": true}]})",
                                     "test"));

    EXPECT_EQ(engine.Answer(R"({"command":"list"})"),
              R"({"description":"Services and modules",)"
              R"("modules":[{"monitored":true,"name":"m1","state":"stopped","version":"2.0"}],)"
              R"("resultCode":0,)"
              R"("services":[{"name":"s1","state":"running","version":"1.0"}]})");
}

TEST(SimEngine, ReportsItsStatus)
{
    EXPECT_EQ(TestEngine().Answer(R"({"command":"engine-status"})"),
              R"({"build":"sim","debugModeEnabled":false,"description":"Status of the engine",)"
              R"("resultCode":0,"safeModeEnabled":false,"state":"running","version":"4.2.0"})");
}

TEST(SimEngine, LeavesOutTheBuildThatItsStateLeavesOut)
{
    sim::State state;
    state.engineState = "running";
    state.version = "1";
    state.safeModeEnabled = true;

    EXPECT_EQ(TestEngine(state).Answer(R"({"command":"engine-status"})"),
              R"({"debugModeEnabled":false,"description":"Status of the engine",)"
              R"("resultCode":0,"safeModeEnabled":true,"state":"running","version":"1"})");
}

TEST(SimEngine, TakesTheKeysInAnyOrder)
{
    TestEngine engine;

    EXPECT_EQ(engine.Answer(R"({"module":"pump1","command":"status"})"),
              engine.Answer(R"({"command":"status","module":"pump1"})"));
}

TEST(SimEngine, SwitchesDebugModeOnAndOffInAnyLetterCase)
{
    TestEngine engine;

    EXPECT_EQ(engine.Answer(R"({"boolean":"tRuE","command":"debug"})"),
              R"({"description":"Debug mode is enabled","resultCode":0})");
    EXPECT_NE(engine.Answer(R"({"command":"engine-status"})").find(R"("debugModeEnabled":true)"),
              std::string::npos);

    EXPECT_EQ(engine.Answer(R"({"boolean":"FALSE","command":"debug"})"),
              R"({"description":"Debug mode is disabled","resultCode":0})");
    EXPECT_NE(engine.Answer(R"({"command":"engine-status"})").find(R"("debugModeEnabled":false)"),
              std::string::npos);
}

TEST(SimEngine, RefusesADebugModeThatIsNotTheStringTrueOrFalse)
{
    const char* const refusal =
        R"({"description":"\"boolean\" is not the string \"true\" or \"false\"","resultCode":1})";
    TestEngine engine;

    EXPECT_EQ(engine.Answer(R"({"command":"debug","boolean":"yes"})"), refusal);
    EXPECT_EQ(engine.Answer(R"({"command":"debug","boolean":true})"), refusal);
    EXPECT_EQ(engine.Answer(R"({"command":"debug"})"), refusal);
}

TEST(SimEngine, RefusesARequestWithoutACommand)
{
    const char* const refusal =
        R"({"description":"The request has no \"command\"","resultCode":1})";
    TestEngine engine;

    EXPECT_EQ(engine.Answer(R"({})"), refusal);
    EXPECT_EQ(engine.Answer(R"({"module":"pump1"})"), refusal);
}

TEST(SimEngine, RefusesACommandThatIsNoName)
{
    const char* const refusal =
        R"({"description":"\"command\" is not the name of a command","resultCode":1})";
    TestEngine engine;

    EXPECT_EQ(engine.Answer(R"({"command":""})"), refusal);
    EXPECT_EQ(engine.Answer(R"({"command":null})"), refusal);
    EXPECT_EQ(engine.Answer(R"({"command":7})"), refusal);
}

TEST(SimEngine, RefusesACommandThatItDoesNotKnow)
{
    EXPECT_EQ(TestEngine().Answer(R"({"command":"dance"})"),
              R"({"description":"Unknown command \"dance\"","resultCode":2})");
    EXPECT_EQ(TestEngine().Answer(R"({"command":"List"})"),
              R"({"description":"Unknown command \"List\"","resultCode":2})");
}

TEST(SimEngine, MayBeGivenAnotherMode)
{
    TestEngine engine;

    engine.Get().SetDebugMode(true);
    engine.Get().SetSafeMode(true);
    EXPECT_EQ(engine.Answer(R"({"command":"engine-status"})"),
              R"({"build":"sim","debugModeEnabled":true,"description":"Status of the engine",)"
              R"("resultCode":0,"safeModeEnabled":true,"state":"running","version":"4.2.0"})");
    engine.Get().SetDebugMode(false);
    engine.Get().SetSafeMode(false);
    EXPECT_EQ(engine.Answer(R"({"command":"engine-status"})"),
              TestEngine().Answer(R"({"command":"engine-status"})"));
}

TEST(SimUpdate, IsNotReportedBeforeItWasRequested)
{
    EXPECT_EQ(TestEngine().Answer(R"({"command":"update-status"})"),
              R"({"description":"No update has been requested","resultCode":0})");
}

TEST(SimUpdate, TakesASecondAModule)
{
    TestEngine engine; // with six modules
    const char* const status = R"({"command":"update-status"})";

    EXPECT_EQ(engine.Answer(R"({"command":"update"})"),
              R"({"description":"Update started","resultCode":0})");
    EXPECT_EQ(engine.Description(status), "Update in progress: 0 of 6 modules done");
    engine.Pass(seconds(2));
    EXPECT_EQ(engine.Description(status), "Update in progress: 2 of 6 modules done");
    engine.Pass(milliseconds(3999));
    EXPECT_EQ(engine.Description(status), "Update in progress: 5 of 6 modules done");
    engine.Pass(milliseconds(1));
    EXPECT_EQ(engine.Description(status), "Update finished: 6 of 6 modules done");
    engine.Pass(seconds(100));
    EXPECT_EQ(engine.Description(status), "Update finished: 6 of 6 modules done");
}

TEST(SimUpdate, ShowsInTheStateOfTheEngineWhileItLasts)
{
    TestEngine engine;
    const char* const status = R"({"command":"engine-status"})";

    engine.Answer(R"({"command":"update"})");

    EXPECT_NE(engine.Answer(status).find(R"("state":"updating")"), std::string::npos);
    engine.Pass(seconds(6));
    EXPECT_NE(engine.Answer(status).find(R"("state":"running")"), std::string::npos);
}

TEST(SimUpdate, IsRefusedWhileAnotherLastsAndAllowedAfterwards)
{
    TestEngine engine;

    engine.Answer(R"({"command":"update"})");
    engine.Pass(seconds(5));

    EXPECT_EQ(engine.Answer(R"({"command":"update"})"),
              R"({"description":"An update is already in progress","resultCode":4})");
    engine.Pass(seconds(1));
    EXPECT_EQ(engine.Answer(R"({"command":"update"})"),
              R"({"description":"Update started","resultCode":0})");
    EXPECT_EQ(engine.Description(R"({"command":"update-status"})"),
              "Update in progress: 0 of 6 modules done");
}

TEST(SimUpdate, OfNoModulesIsFinishedAtOnce)
{
    TestEngine engine(sim::State{});

    engine.Answer(R"({"command":"update"})");

    EXPECT_EQ(engine.Description(R"({"command":"update-status"})"),
              "Update finished: 0 of 0 modules done");
    EXPECT_EQ(engine.Answer(R"({"command":"update"})"),
              R"({"description":"Update started","resultCode":0})");
}

TEST(SimEngine, AnswersOneRequestAfterTheOther)
{
    std::atomic<bool> answering(false);
    std::atomic<bool> overlapped(false);
    sim::Engine engine(sim::DefaultState(), [&] { // asked for the time amid each answer
        overlapped = overlapped || answering.exchange(true);
        std::this_thread::yield();
        answering = false;
        return sim::TimePoint();
    });

    const auto ask = [&engine] {
        Poco::JSON::Object request;
        request.set("command", "update-status");
        for (int round = 0; round < 50; ++round) {
            engine.Answer(request);
        }
    };
    std::array<std::thread, 8> threads;
    for (std::thread& thread : threads) {
        thread = std::thread(ask);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }

    EXPECT_FALSE(overlapped);
}
