// A reply that is cut off after any of its bytes, in every exchange. The tool runs in this process,
// as there are hundreds of runs in a test.

#include "tests/fuzz/Run.h"
#include "tests/tool/Scenarios.h"

#include <gtest/gtest.h>

#include <Poco/Exception.h>
#include <Poco/JSON/Parser.h>

namespace {

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
    Arguments arguments = scenario.commandLine;
    arguments.insert(arguments.begin(), "quorlan");
    for (std::size_t size = 0; size < scenario.Reply().size(); ++size) {
        const std::string part = scenario.Reply().substr(0, size);
        Replies replies(scenario.replies.begin(), scenario.replies.end());
        replies.at(scenario.faulty) = part;

        const RunResult run = ::Run(arguments, replies);

        EXPECT_EQ((Outcome{run.status, run.out, run.err}),
                  scenario.Unreadable(ReasonToRefuse(part)))
            << "after " << size << " bytes";
        EXPECT_EQ(run.requests, scenario.RequestsUpToFault());
    }
}

INSTANTIATE_TEST_SUITE_P(Faults, TruncatedReply,
                         testing::Range(Scenarios().data(),
                                        Scenarios().data() + Scenarios().size()),
                         [](const auto& scenario) { return scenario.param->name; });
