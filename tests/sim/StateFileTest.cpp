#include "sim/StateFile.h"
#include "tests/sim/ErrorOf.h"

#include <gtest/gtest.h>

#include <set>

namespace {

constexpr int dataError = 65;
constexpr int noInput = 66;

const std::string engineMember = R"("engine": {"state": "running", "version": "1",
    "safeModeEnabled": false, "debugModeEnabled": true})";

std::string Error(int status, const std::string& message)
{
    return std::to_string(status) + " " + message;
}

std::string ErrorOfReading(const std::string& json)
{
    return ErrorOf([&json] { sim::ReadState(json, "my.json"); });
}

/// The error of a state whose modules are these.
std::string ErrorOfModules(const std::string& modules)
{
    return ErrorOfReading("{" + engineMember + R"(, "services": [], "modules": )" + modules + "}");
}

std::string ErrorOfEngine(const std::string& engine)
{
    return ErrorOfReading(R"({"engine": )" + engine + R"(, "services": [], "modules": []})");
}

} // namespace

TEST(SimState, IsReadFromJson)
{
    const sim::State state = sim::ReadState(R"({
        "engine": {"state": "degraded", "version": "1.2", "build": "b7",
                   "safeModeEnabled": true, "debugModeEnabled": false},
        "services": [{"name": "s1", "state": "running", "version": "1.0"}],
        "modules": [{"name": "m1", "state": "odd", "version": "2.0", "monitored": false}]})",
                                            "my.json");

    EXPECT_EQ(state.engineState, "degraded");
    EXPECT_EQ(state.version, "1.2");
    EXPECT_EQ(state.build.value_or(""), "b7");
    EXPECT_TRUE(state.safeModeEnabled);
    EXPECT_FALSE(state.debugModeEnabled);
    ASSERT_EQ(state.services.size(), 1U);
    EXPECT_EQ(state.services[0].name, "s1");
    EXPECT_FALSE(state.services[0].monitored.has_value());
    ASSERT_EQ(state.modules.size(), 1U);
    EXPECT_EQ(state.modules[0].name, "m1");
    EXPECT_EQ(state.modules[0].state, "odd");
    EXPECT_EQ(state.modules[0].version, "2.0");
    EXPECT_FALSE(state.modules[0].monitored.value_or(true));
}

TEST(SimState, SaysHowLongCommandsTakeAndHowTheyEnd)
{
    const sim::State state = sim::ReadState(
        "{" + engineMember + R"(, "modules": [], "services": [{"name": "s1", "version": "1",
            "state": "running", "start": {"seconds": 86400}, "stop": {"seconds": 0.25},
            "restart": {"end": "failed"}}]})",
        "my.json");

    const std::map<std::string, sim::Transition>& found = state.services.at(0).transitions;
    ASSERT_EQ(found.size(), 3U);
    EXPECT_EQ(found.at("start").duration, std::chrono::hours(24));
    EXPECT_EQ(found.at("start").end, "running");
    EXPECT_EQ(found.at("stop").duration, std::chrono::milliseconds(250));
    EXPECT_EQ(found.at("stop").end, "stopped");
    EXPECT_EQ(found.at("restart").duration, std::chrono::seconds(0));
    EXPECT_EQ(found.at("restart").end, "failed");
}

TEST(SimState, NamesTheCommandWhoseTimeOrEndIsWrong)
{
    const auto errorOf = [](const std::string& transition) {
        return ErrorOfModules(R"([{"name": "m1", "state": "running", "version": "1", "stop": )" +
                              transition + "}]");
    };
    const std::string place = "my.json: modules[0].stop: ";

    EXPECT_EQ(errorOf("2"), Error(dataError, place + "not a JSON object"));
    EXPECT_EQ(errorOf(R"({"second": 2})"), Error(dataError, place + "unknown member \"second\""));
    EXPECT_EQ(errorOf(R"({"end": ""})"),
              Error(dataError, place + "\"end\" is not a non-empty string"));
    for (const char* const seconds :
         {"-1", "-0.5", "86400.5", "86401", "\"2\"", "true", "null", "[]", "{}"}) {
        EXPECT_EQ(errorOf(std::string(R"({"seconds": )") + seconds + "}"),
                  Error(dataError, place + "\"seconds\" is not a number from 0 to 86400"))
            << seconds;
    }
    // Whether such a number gets past the parser is up to POCO.
    for (const char* const seconds : {"1e999", "-1e999", "99999999999999999999"}) {
        EXPECT_EQ(errorOf(std::string(R"({"seconds": )") + seconds + "}").rfind("65 my.json: ", 0),
                  0U)
            << seconds;
    }
}

TEST(SimState, MayBeWithoutAnythingToSupervise)
{
    EXPECT_EQ(ErrorOfModules("[]"), "no error");
}

TEST(SimState, ByDefaultShowsEveryColorOfTheListing)
{
    std::set<std::string> states;
    std::set<bool> monitored;
    const sim::State state = sim::DefaultState();
    for (const sim::Module& module : state.modules) {
        states.insert(module.state);
        monitored.insert(module.monitored.value());
    }

    const std::set<std::string> allStates = {"failed", "running", "starting", "stopped",
                                             "terminated"};
    EXPECT_EQ(states, allStates);
    EXPECT_EQ(monitored.size(), 2U);
}

TEST(SimState, OfTheRepositoryCanBeLoadedAsAFile)
{
    EXPECT_EQ(sim::LoadState(DEFAULT_STATE_FILE).modules.size(),
              sim::DefaultState().modules.size());
}

TEST(SimState, FromAFileThatDoesNotExistIsRefused)
{
    EXPECT_EQ(ErrorOf([] { sim::LoadState("/nonexistent/my.json"); }),
              Error(noInput, "/nonexistent/my.json: cannot be read: No such file or directory"));
}

TEST(SimState, FromADirectoryIsRefused)
{
    EXPECT_EQ(ErrorOf([] { sim::LoadState("/"); }),
              Error(noInput, "/: cannot be read: Is a directory"));
}

TEST(SimState, FromAFileThatDoesNotEndIsRefused)
{
    EXPECT_EQ(ErrorOf([] { sim::LoadState("/dev/zero"); }),
              Error(dataError, "/dev/zero: longer than 1 MiB"));
}

TEST(SimState, ThatIsNotJsonIsRefused)
{
    // The rest of the message is POCO's.
    EXPECT_EQ(ErrorOfReading("{\"engine\": ").rfind(Error(dataError, "my.json: not valid JSON: ")),
              0U);
    EXPECT_EQ(ErrorOfReading("").rfind(Error(dataError, "my.json: not valid JSON: ")), 0U);
}

TEST(SimState, ThatIsNotAnObjectIsRefused)
{
    for (const char* const root : {"[]", " [", "null", "3", "\"x\"", "true", "hello"}) {
        EXPECT_EQ(ErrorOfReading(root), Error(dataError, "my.json: not a JSON object")) << root;
    }
}

TEST(SimState, NamesTheMemberThatIsMissing)
{
    EXPECT_EQ(ErrorOfReading("{}"), Error(dataError, "my.json: \"engine\" is missing"));
    EXPECT_EQ(ErrorOfReading("{" + engineMember + "}"),
              Error(dataError, "my.json: \"services\" is missing"));
    EXPECT_EQ(ErrorOfEngine(R"({"state": "running"})"),
              Error(dataError, "my.json: engine: \"version\" is missing"));
    EXPECT_EQ(ErrorOfModules(R"([{"name": "m1", "state": "running", "version": "1"},
                                 {"name": "m2", "version": "1"}])"),
              Error(dataError, "my.json: modules[1]: \"state\" is missing"));
}

TEST(SimState, NamesTheMemberOfTheWrongType)
{
    EXPECT_EQ(ErrorOfModules("{}"), Error(dataError, "my.json: \"modules\" is not an array"));
    EXPECT_EQ(ErrorOfModules("[7]"), Error(dataError, "my.json: modules[0]: not a JSON object"));
    EXPECT_EQ(ErrorOfModules(R"([{"name": "m1", "state": 3, "version": "1"}])"),
              Error(dataError, "my.json: modules[0]: \"state\" is not a non-empty string"));
    EXPECT_EQ(ErrorOfModules(R"([{"name": "m1", "state": "", "version": "1"}])"),
              Error(dataError, "my.json: modules[0]: \"state\" is not a non-empty string"));
    EXPECT_EQ(ErrorOfEngine(R"({"state": "running", "version": "1", "safeModeEnabled": "no"})"),
              Error(dataError, "my.json: engine: \"safeModeEnabled\" is neither true nor false"));
}

TEST(SimState, NamesTheMemberThatItDoesNotKnow)
{
    EXPECT_EQ(
        ErrorOfModules(R"([{"name": "m1", "state": "running", "version": "1", "monitord": true}])"),
        Error(dataError, "my.json: modules[0]: unknown member \"monitord\""));
    EXPECT_EQ(ErrorOfReading(R"({"a\nb": {}})"),
              Error(dataError, "my.json: unknown member \"a?b\""));
}

TEST(SimState, RefusesANameThatTheClientCannotSend)
{
    EXPECT_EQ(ErrorOfModules(R"([{"name": "m-1", "state": "running", "version": "1"}])"),
              Error(dataError, "my.json: modules[0]: \"name\" is not 1 to 16 letters and digits"));
}

TEST(SimState, RefusesANameUsedTwiceAlsoAcrossServicesAndModules)
{
    EXPECT_EQ(ErrorOfReading("{" + engineMember +
                             R"(, "services": [{"name": "m1", "state": "running", "version": "1"}],
                                  "modules": [{"name": "m1", "state": "stopped", "version": "1"}]})"),
              Error(dataError, "my.json: the name \"m1\" is used twice"));
}

TEST(SimState, WantsMonitoredInEveryEntryOfATableOrInNone)
{
    EXPECT_EQ(ErrorOfModules(R"([{"name": "m1", "state": "running", "version": "1"},
                                 {"name": "m2", "state": "running", "version": "1",
                                  "monitored": true}])"),
              Error(dataError, "my.json: modules[1]: \"monitored\" must be in every entry of "
                               "\"modules\" or in none"));
}
