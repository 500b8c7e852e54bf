// Faults of every exchange that are no fixed row of a table.

#include "tests/support/ScriptedEngine.h"
#include "tests/support/Tool.h"
#include "tests/tool/Exchanges.h"

#include <gtest/gtest.h>

#include <typeinfo>

#include <Poco/Exception.h>
#include <Poco/JSON/Array.h>
#include <Poco/JSON/Object.h>
#include <Poco/JSON/Parser.h>

namespace {

std::string ReasonToRefuse(const std::string& reply)
{
    try {
        Poco::JSON::Parser().parse(reply);
    } catch (const Poco::Exception& exception) {
        return exception.displayText();
    }
    return "none";
}

class EveryExchange: public testing::TestWithParam<const Exchange*>
{
};

std::string ExchangeName(const testing::TestParamInfo<const Exchange*>& exchange)
{
    return exchange.param->name;
}

} // namespace

TEST_P(EveryExchange, RefusedEndsTheRun)
{
    const Exchange& exchange = *GetParam();
    if (exchange.faulty == 0) {
        EXPECT_EQ(RunTool(exchange.commandLine), exchange.Refused());
        return;
    }
    ScriptedEngine engine;
    exchange.ServeUpToFault(engine);
    engine.StopListeningAfter(exchange.faulty);

    EXPECT_EQ(RunTool(exchange.commandLine), exchange.Refused());
}

TEST_P(EveryExchange, RefusesAnArrayAsItsReply)
{
    const Exchange& exchange = *GetParam();
    ScriptedEngine engine;
    exchange.ServeUpToFault(engine);
    engine.OnConnection(Reply("[" + exchange.Reply() + "]"));

    EXPECT_EQ(RunTool(exchange.commandLine),
              exchange.Unreadable(std::string("Bad cast exception: Can not convert ") +
                                  typeid(Poco::JSON::Array::Ptr).name() + " to " +
                                  typeid(Poco::JSON::Object::Ptr).name() + "."));
}

// What POCO says of a reply that ends too early depends on where; its parser is asked here too.
TEST_P(EveryExchange, RefusesAReplyTruncatedAtAnyByte)
{
    const Exchange& exchange = *GetParam();
    const std::string& reply = exchange.Reply();
    ScriptedEngine engine;
    for (std::size_t size = 0; size < reply.size(); ++size) {
        exchange.ServeUpToFault(engine);
        engine.OnConnection(Reply(reply.substr(0, size)));

        EXPECT_EQ(RunTool(exchange.commandLine),
                  exchange.Unreadable(ReasonToRefuse(reply.substr(0, size))))
            << "after " << size << " bytes";
    }
}

INSTANTIATE_TEST_SUITE_P(Faults, EveryExchange, testing::ValuesIn(Exchanges()), ExchangeName);
