// A reply that is cut off after any of its bytes, in every exchange. The tool runs in this process,
// as there are hundreds of runs in a test.

#include "app/Quorlan.h"
#include "tests/support/ScriptedEngine.h"
#include "tests/tool/Scenarios.h"

#include <gtest/gtest.h>

#include <iostream>
#include <sstream>

#include <Poco/AutoPtr.h>
#include <Poco/Exception.h>
#include <Poco/JSON/Parser.h>

namespace {

/// Collects what is written to a stream while it lives.
class Captured
{
public:
    explicit Captured(std::ostream& captured)
        : stream(captured), original(captured.rdbuf(text.rdbuf()))
    {
    }
    Captured(const Captured&) = delete;
    Captured& operator=(const Captured&) = delete;
    ~Captured() { stream.rdbuf(original); }

    std::string Text() const { return text.str(); }

private:
    std::ostringstream text;
    std::ostream& stream;
    std::streambuf* original;
};

Outcome RunHere(const std::vector<std::string>& arguments)
{
    const Captured out(std::cout);
    const Captured err(std::cerr);
    std::vector<std::string> words{"quorlan"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    Poco::AutoPtr<Quorlan> quorlan(new Quorlan);
    quorlan->init(words);
    const int status = quorlan->run();
    return {status, out.Text(), err.Text()};
}

// It depends on where the reply ends; POCO's parser is asked here too.
std::string ReasonToRefuse(const std::string& reply)
{
    try {
        Poco::JSON::Parser().parse(reply);
    } catch (const Poco::Exception& exception) {
        return exception.displayText();
    }
    return "none";
}

class TruncatedReply: public testing::TestWithParam<const Scenario*>
{
};

} // namespace

TEST_P(TruncatedReply, IsRefusedWhereverItEnds)
{
    const Scenario& scenario = *GetParam();
    const std::string& reply = scenario.Reply();
    ScriptedEngine engine;
    for (std::size_t size = 0; size < reply.size(); ++size) {
        scenario.ServeUpToFault(engine);
        engine.OnConnection(Reply(reply.substr(0, size)));

        EXPECT_EQ(RunHere(scenario.commandLine),
                  scenario.Unreadable(ReasonToRefuse(reply.substr(0, size))))
            << "after " << size << " bytes";
    }
}

INSTANTIATE_TEST_SUITE_P(Faults, TruncatedReply,
                         testing::Range(Scenarios().data(),
                                        Scenarios().data() + Scenarios().size()),
                         [](const auto& scenario) { return scenario.param->name; });
