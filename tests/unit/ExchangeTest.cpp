#include "app/Quorlan.h"
#include "engine/Request.h"
#include "tests/support/ScriptedEngine.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

#include <Poco/AutoPtr.h>

namespace {

class ExecuteRequest: public testing::Test
{
protected:
    /// What the process would end with after what the test did.
    int ExitStatus() { return quorlan->main({}); }

    Poco::AutoPtr<Quorlan> quorlan{new Quorlan};
};

} // namespace

TEST(SendRequest, EmptiesTheReplyBeforeAnythingElse)
{
    std::string reply = "text from before";

    EXPECT_FALSE(Quorlan::SendRequest(MakeRequest("list"), reply));

    EXPECT_EQ(reply, "");
}

TEST_F(ExecuteRequest, GivesTheHandlerTheObjectOnceAndBeforeTheResultCode)
{
    ScriptedEngine engine{R"({"key":"value","resultCode":3})"};
    quorlan->init(std::vector<std::string>{"quorlan", "--"}); // an argument, and no command
    std::vector<std::string> seen;
    int statusBefore = -1;

    quorlan->ExecuteRequest(MakeRequest("status"), [&](const Poco::JSON::Object::Ptr& reply) {
        seen.push_back(reply->getValue<std::string>("key"));
        statusBefore = ExitStatus();
    });

    EXPECT_EQ(seen, std::vector<std::string>{"value"});
    EXPECT_EQ(statusBefore, 0);
    EXPECT_EQ(ExitStatus(), 3);
}

TEST_F(ExecuteRequest, LetsAnotherExceptionOfTheHandlerPass)
{
    ScriptedEngine engine{R"({"resultCode":3})"};

    EXPECT_THROW(quorlan->ExecuteRequest(
                     MakeRequest("status"),
                     [](const Poco::JSON::Object::Ptr&) { throw std::runtime_error("other"); }),
                 std::runtime_error);
}

TEST_F(ExecuteRequest, LetsTheExceptionOfAnEmptyHandlerPass)
{
    ScriptedEngine engine{R"({"resultCode":0})"};

    EXPECT_THROW(quorlan->ExecuteRequest(MakeRequest("status"), {}), std::bad_function_call);
}
