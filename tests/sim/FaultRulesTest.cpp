// Which requests a fault is for.

#include "sim/FaultRules.h"
#include "sim/StartError.h"
#include "tests/sim/ErrorOf.h"

#include <Poco/JSON/Parser.h>

#include <gtest/gtest.h>

namespace {

sim::Request RequestOf(const std::string& text)
{
    sim::Request request;
    request.text = text;
    if (!text.empty()) {
        request.object = Poco::JSON::Parser().parse(text).extract<Poco::JSON::Object::Ptr>();
    }
    return request;
}

const sim::Request list = RequestOf(R"({"command":"list"})");
const sim::Request start = RequestOf(R"({"command":"start","module":"valve"})");

/// The rules of --fault options with these texts.
class Rules
{
public:
    explicit Rules(const std::vector<std::string>& texts) : rules(Parsed(texts)) {}

    void Replace(const std::vector<std::string>& texts) { rules.Replace(Parsed(texts)); }
    std::string For(const sim::Request& request) { return rules.For(request).name; }

    std::string WithoutRequest()
    {
        const sim::Fault* const fault = rules.WithoutRequest();
        return fault == nullptr ? "none" : fault->name;
    }

    bool AcceptNobody() { return rules.AcceptNobody(); }

private:
    static std::vector<sim::FaultRule> Parsed(const std::vector<std::string>& texts)
    {
        std::vector<sim::FaultRule> rules;
        rules.reserve(texts.size());
        for (const std::string& text : texts) {
            rules.push_back(sim::ParseFaultRule(text));
        }
        return rules;
    }

    sim::FaultRules rules;
};

std::string ErrorOfRule(const std::string& text)
{
    return ErrorOf([&text] { sim::ParseFaultRule(text); });
}

std::string ErrorOfNumber(const std::string& number)
{
    return "64 fault \"half@" + number + "\": \"" + number + "\" is not a number from 1 on";
}

} // namespace

TEST(SimFaultRules, WithoutAnyLeaveEveryRequestAlone)
{
    Rules rules({});

    EXPECT_EQ(rules.For(list), "");
    EXPECT_EQ(rules.WithoutRequest(), "none");
    EXPECT_FALSE(rules.AcceptNobody());
}

TEST(SimFaultRules, WithoutAScopeAreForEveryRequest)
{
    Rules rules({"half"});

    EXPECT_EQ(rules.For(list), "half");
    EXPECT_EQ(rules.For(start), "half");
    EXPECT_EQ(rules.For(RequestOf("{}")), "half");
    EXPECT_EQ(rules.For(RequestOf("")), "half");
}

TEST(SimFaultRules, OfACommandAreForNoOther)
{
    Rules rules({"half:start"});

    EXPECT_EQ(rules.For(list), "");
    EXPECT_EQ(rules.For(start), "half");
    EXPECT_EQ(rules.For(RequestOf("{}")), "");
    EXPECT_EQ(rules.For(RequestOf(R"({"command":7})")), "");
    EXPECT_EQ(rules.For(RequestOf("")), "");
    EXPECT_EQ(rules.For(start), "half");
}

TEST(SimFaultRules, OfANumberCountAllRequests)
{
    Rules rules({"half@3"});

    EXPECT_EQ(rules.For(list), "");
    EXPECT_EQ(rules.For(RequestOf("{}")), "");
    EXPECT_EQ(rules.For(start), "half");
    EXPECT_EQ(rules.For(start), "");
}

TEST(SimFaultRules, OfACommandAndANumberCountTheRequestsOfThatCommand)
{
    Rules rules({"half:start@2"});

    EXPECT_EQ(rules.For(start), "");
    EXPECT_EQ(rules.For(list), "");
    EXPECT_EQ(rules.For(list), "");
    EXPECT_EQ(rules.For(start), "half");
    EXPECT_EQ(rules.For(start), "");
}

TEST(SimFaultRules, DoNotCountAConnectionThatBringsNothing)
{
    Rules rules({"half@1"});

    EXPECT_EQ(rules.For(RequestOf("")), "");
    EXPECT_EQ(rules.For(list), "half");
}

TEST(SimFaultRules, TheFirstThatFitsCounts)
{
    Rules rules({"half:start@1", "garbage:start", "slow@4", "silent"});

    EXPECT_EQ(rules.For(start), "half");
    EXPECT_EQ(rules.For(start), "garbage");
    EXPECT_EQ(rules.For(list), "silent");
    EXPECT_EQ(rules.For(list), "slow");
    EXPECT_EQ(rules.For(list), "silent");
}

TEST(SimFaultRules, AlsoCountTheRequestsThatAnotherFaultMet)
{
    Rules rules({"half:start", "garbage@2"});

    EXPECT_EQ(rules.For(start), "half");
    EXPECT_EQ(rules.For(list), "garbage");
}

TEST(SimFaultRules, CountAgainAfterTheyWereReplaced)
{
    Rules rules({"half@2", "garbage:list@1"});
    rules.For(list);

    rules.Replace({"slow@1", "silent:list@1"});

    EXPECT_EQ(rules.For(list), "slow");
    EXPECT_EQ(rules.For(list), "");
}

TEST(SimFaultRules, OnlyWaitForARequestThatMatters)
{
    EXPECT_EQ(Rules({"close"}).WithoutRequest(), "close");
    EXPECT_EQ(Rules({"close", "half"}).WithoutRequest(), "close");
    EXPECT_EQ(Rules({"half:list", "close"}).WithoutRequest(), "none");
    EXPECT_EQ(Rules({"close:list"}).WithoutRequest(), "none");
    EXPECT_EQ(Rules({"close@1"}).WithoutRequest(), "none");
    EXPECT_EQ(Rules({"silent"}).WithoutRequest(), "none");
}

TEST(SimFaultRules, MayLeaveEverybodyWaiting)
{
    EXPECT_TRUE(Rules({"no-accept"}).AcceptNobody());
    EXPECT_FALSE(Rules({"close"}).AcceptNobody());
}

TEST(SimFaultRules, ForEachCommandCanBeMade)
{
    for (const char* const command :
         {"debug", "update", "update-status", "engine-status", "list", "start", "stop", "restart",
          "reconfigure", "monitor", "status", "pid"}) {
        EXPECT_EQ(sim::ParseFaultRule(std::string("half:") + command).command, command);
    }
}

TEST(SimFaultRules, WithAMistakeAreAUsageErrorThatNamesIt)
{
    EXPECT_EQ(ErrorOfRule("fire:list@1"), "64 unknown fault \"fire\" (--help lists them)");
    EXPECT_EQ(ErrorOfRule(":list"), "64 unknown fault \"\" (--help lists them)");
    EXPECT_EQ(ErrorOfRule("half:dance"), "64 fault \"half:dance\": unknown command \"dance\"");
    EXPECT_EQ(ErrorOfRule("half:List"), "64 fault \"half:List\": unknown command \"List\"");
    EXPECT_EQ(ErrorOfRule("half:@1"), "64 fault \"half:@1\": unknown command \"\"");
    EXPECT_EQ(ErrorOfRule("half:a\nb"), "64 fault \"half:a?b\": unknown command \"a?b\"");
    for (const std::string number :
         {"", "0", "-1", "+1", "1.5", "1x", " 1", "two", "1:list", "1@1", "18446744073709551616"}) {
        EXPECT_EQ(ErrorOfRule("half@" + number), ErrorOfNumber(number));
    }
    EXPECT_EQ(ErrorOfRule("no-accept:list"),
              "64 fault \"no-accept:list\": no-accept is for every connection");
    EXPECT_EQ(ErrorOfRule("no-accept@1"),
              "64 fault \"no-accept@1\": no-accept is for every connection");
}
