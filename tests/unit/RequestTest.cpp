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
    EXPECT_EQ(Text(MakeRequest("update", "", "dropped")), R"({"command":"update"})");
}

TEST(Request, KeepsAnEmptyValueOfAKey)
{
    EXPECT_EQ(Text(MakeRequest("start", "module", "")), R"({"command":"start","module":""})");
}
