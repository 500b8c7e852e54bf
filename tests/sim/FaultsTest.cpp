#include "sim/Faults.h"
#include "sim/Engine.h"
#include "sim/Reply.h"
#include "sim/StartError.h"
#include "sim/StateFile.h"
#include "tests/sim/Repeated.h"

#include <Poco/JSON/Array.h>
#include <Poco/JSON/Parser.h>

#include <gtest/gtest.h>

namespace {

/// What a connection with the fault would send, and what becomes of the engine.
class SimFault: public testing::Test
{
protected:
    std::string TextOf(const std::string& fault, const std::string& command)
    {
        Poco::JSON::Object request;
        request.set("command", command);
        request.set("boolean", "true");
        const sim::Fault& found = fault.empty() ? sim::NoFault() : sim::FindFault(fault);
        return found.write(found.answer(engine, request));
    }

    sim::Engine engine{sim::DefaultState()};
};

Poco::JSON::Object::Ptr Parsed(const std::string& json)
{
    return Poco::JSON::Parser().parse(json).extract<Poco::JSON::Object::Ptr>();
}

const char* const plainText = R"({"description":"No update has been requested","resultCode":0})";

const std::string modulesMember = R"("modules":[)";
const std::string entry = R"({"name":"huge","state":"running","version":"1.0.0","monitored":true})";

} // namespace

TEST_F(SimFault, MayBeNone)
{
    EXPECT_EQ(TextOf("", "update-status"), plainText);
    EXPECT_EQ(sim::NoFault().reach, sim::Reach::CarriedOut);
}

TEST_F(SimFault, CloseDoesNotReadTheRequest)
{
    EXPECT_EQ(sim::FindFault("close").reach, sim::Reach::Accepted);
}

TEST_F(SimFault, SilentSaysNothing)
{
    EXPECT_EQ(TextOf("silent", "update-status"), "");
}

TEST_F(SimFault, SlowAndStayOpenSayWhatIsRight)
{
    EXPECT_EQ(TextOf("slow", "update-status"), plainText);
    EXPECT_EQ(TextOf("stay-open", "update-status"), plainText);
}

TEST_F(SimFault, HalfAndResetSayTheFirstHalf)
{
    EXPECT_EQ(TextOf("half", "update-status"), R"({"description":"No update has )");
    EXPECT_EQ(TextOf("reset", "update-status"), R"({"description":"No update has )");
}

TEST_F(SimFault, GarbageIsNotJson)
{
    EXPECT_THROW(Poco::JSON::Parser().parse(TextOf("garbage", "update-status")), Poco::Exception);
}

TEST_F(SimFault, WrongTypeIsAnArray)
{
    EXPECT_EQ(TextOf("wrong-type", "update-status"), "[" + std::string(plainText) + "]");
}

TEST_F(SimFault, NoResultCodeLeavesNothingElseOut)
{
    EXPECT_EQ(TextOf("no-result-code", "update-status"),
              R"({"description":"No update has been requested"})");
}

TEST_F(SimFault, ErrorCodeRefusesAndChangesNothing)
{
    EXPECT_EQ(TextOf("error-code", "debug"),
              R"({"description":"Refused on purpose","resultCode":6})");
    EXPECT_NE(TextOf("", "engine-status").find(R"("debugModeEnabled":false)"), std::string::npos);
}

TEST_F(SimFault, RefusedStatusHasAllTheMembersOfAStatus)
{
    EXPECT_EQ(TextOf("refused-status", "engine-status"),
              R"({"build":"sim","debugModeEnabled":false,"description":"Refused on purpose",)"
              R"("resultCode":6,"safeModeEnabled":false,"state":"running","version":"4.2.0"})");
}

TEST_F(SimFault, RefusedStatusLeavesOtherCommandsAlone)
{
    EXPECT_EQ(TextOf("refused-status", "list"), TextOf("", "list"));
    EXPECT_EQ(TextOf("refused-status", "debug"),
              R"({"description":"Debug mode is enabled","resultCode":0})");
}

TEST_F(SimFault, ControlCharactersAreInTheDescription)
{
    const auto reply = Parsed(TextOf("control-characters", "update-status"));

    EXPECT_EQ(reply->getValue<std::string>("description"),
              "\033[31mNo update has been requested\tred\033[0m\r\n");
    EXPECT_EQ(reply->getValue<int>("resultCode"), 0);
}

TEST_F(SimFault, ControlCharactersAreInTheNamesOfServicesAndModules)
{
    const auto reply = Parsed(TextOf("control-characters", "list"));

    const auto service = reply->getArray("services")->getObject(0);
    EXPECT_EQ(service->getValue<std::string>("name"), "\033[31mstorage\tred\033[0m\r\n");
    EXPECT_EQ(service->getValue<std::string>("state"), "running");
    const auto module = reply->getArray("modules")->getObject(5);
    EXPECT_EQ(module->getValue<std::string>("name"), "\033[31mheater\tred\033[0m\r\n");
    EXPECT_EQ(TextOf("", "list").find("\\t"), std::string::npos);
}

TEST_F(SimFault, CarriesTheCommandOutIfItSaysSo)
{
    for (const sim::Fault& fault : sim::AllFaults()) {
        if (fault.reach < sim::Reach::Read) {
            continue; // the engine is not even asked
        }
        sim::Engine fresh{sim::DefaultState()};
        Poco::JSON::Object request;
        request.set("command", "update");
        fault.answer(fresh, request);

        request.set("command", "update-status");
        const bool started = sim::Compact(fresh.Answer(request)).find("of 6") != std::string::npos;
        EXPECT_EQ(started, fault.reach == sim::Reach::CarriedOut) << fault.name;
    }
}

TEST_F(SimFault, HugePutsManyMegabytesBeforeTheModules)
{
    std::string expected = TextOf("", "list");
    expected.insert(expected.find(modulesMember) + modulesMember.size(),
                    Repeated(entry + ",", 100000));

    const std::string text = TextOf("huge", "list");

    EXPECT_GT(text.size(), 6U * 1024 * 1024);
    EXPECT_TRUE(text == expected) << "begins with " << text.substr(0, 1000);
}

TEST_F(SimFault, HugeNeedsNoModulesOfTheEngine)
{
    Poco::JSON::Object reply;
    reply.set("modules", Poco::JSON::Array::Ptr(new Poco::JSON::Array));

    const std::string text = sim::FindFault("huge").write(reply);

    EXPECT_TRUE(text == "{" + modulesMember + Repeated(entry + ",", 99999) + entry + "]}")
        << "ends with " << text.substr(text.size() - 1000);
}

TEST_F(SimFault, HugeAddsNoHeartbeatWhereTheOtherModulesHaveNone)
{
    Poco::JSON::Array::Ptr modules = new Poco::JSON::Array;
    Poco::JSON::Object module;
    module.set("name", "m1");
    modules->add(module);
    Poco::JSON::Object reply;
    reply.set("modules", modules);

    const std::string text = sim::FindFault("huge").write(reply);

    EXPECT_EQ(text.find("monitored"), std::string::npos);
    EXPECT_EQ(text.substr(0, 64),
              R"({"modules":[{"name":"huge","state":"running","version":"1.0.0"},)");
}

TEST_F(SimFault, HugeLeavesOtherCommandsAlone)
{
    EXPECT_EQ(TextOf("huge", "update-status"), plainText);
}

TEST(SimFaults, AreFoundByTheirNameAndHaveAHelpOfOneLine)
{
    for (const sim::Fault& fault : sim::AllFaults()) {
        EXPECT_EQ(&sim::FindFault(fault.name), &fault) << fault.name;
        EXPECT_NE(std::string(fault.help), "") << fault.name;
        EXPECT_EQ(std::string(fault.help).find('\n'), std::string::npos) << fault.name;
    }
}

TEST(SimFaults, OfTheReplyAreSentLikeAnyReply)
{
    for (const char* name : {"garbage", "wrong-type", "no-result-code", "error-code",
                             "refused-status", "control-characters", "huge"}) {
        EXPECT_EQ(sim::FindFault(name).send, sim::NoFault().send) << name;
    }
}

TEST(SimFaults, UnknownIsAUsageError)
{
    try {
        sim::FindFault("fire");
        FAIL() << "found";
    } catch (const sim::StartError& error) {
        EXPECT_EQ(error.status, 64);
        EXPECT_STREQ(error.what(), "unknown fault \"fire\" (--help lists them)");
    }
}
