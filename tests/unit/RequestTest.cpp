#include "engine/Request.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

std::string Text(const Poco::JSON::Object& request)
{
    std::ostringstream stream;
    request.stringify(stream, 0, -1);
    return stream.str();
}

} // namespace

TEST(Request, HoldsTheCommandAloneWithoutAKey)
{
    EXPECT_EQ(Text(MakeRequest("list")), R"({"command":"list"})");
    EXPECT_EQ(Text(MakeRequest("update", "", "dropped")), R"({"command":"update"})");
}

TEST(Request, SendsItsKeysInAscendingOrder)
{
    EXPECT_EQ(Text(MakeRequest("start", "module", "mod1")),
              R"({"command":"start","module":"mod1"})");
    EXPECT_EQ(Text(MakeRequest("debug", "boolean", "true")),
              R"({"boolean":"true","command":"debug"})");
}

TEST(Request, KeepsAnEmptyValueOfAKey)
{
    EXPECT_EQ(Text(MakeRequest("start", "module", "")), R"({"command":"start","module":""})");
}
