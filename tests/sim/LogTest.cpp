#include "sim/Log.h"

#include <Poco/String.h>

#include <gtest/gtest.h>

TEST(SimLog, ShowsATextThatFitsALineAsItIs)
{
    EXPECT_EQ(sim::Printable(R"({"command":"list"})"), R"({"command":"list"})");
}

TEST(SimLog, SaysThatATextIsEmpty)
{
    EXPECT_EQ(sim::Printable(""), "(nothing)");
}

TEST(SimLog, ReplacesEveryByteThatCouldDisturbATerminal)
{
    EXPECT_EQ(sim::Printable("a\nb\x1b[31mc\x7f\x9b\xc3\xa4"), "a?b?[31mc????");
}

TEST(SimLog, KeepsEveryCharacterInJson)
{
    EXPECT_EQ(sim::JsonString(""), R"("")");
    EXPECT_EQ(sim::JsonString("{\"a\":\n\"\xc3\xa4 \xe2\x82\xac \xf0\x9f\x98\x80\"}"),
              "\"{\\\"a\\\":\\n\\\"\xc3\xa4 \xe2\x82\xac \xf0\x9f\x98\x80\\\"}\"");
    EXPECT_EQ(sim::JsonString(std::string(100000, 'x')).size(), 100002U);
}

TEST(SimLog, EscapesControlCharactersInJson)
{
    const std::string json = sim::JsonString(std::string("\0\x1b\x01", 3));

    EXPECT_EQ(Poco::toUpper(json), R"("\U0000\U001B\U0001")");
}

TEST(SimLog, ReplacesBytesThatAreNotUtf8InJson)
{
    const std::string replaced = "\xef\xbf\xbd";
    for (const char* const bytes : {"\x80", "\xff", "\xc0", "\xf5", "\xe2\x82", "\xc3"}) {
        std::string expected = "\"a";
        for (std::size_t i = 0; i < std::string(bytes).size(); ++i) {
            expected += replaced;
        }
        EXPECT_EQ(sim::JsonString("a" + std::string(bytes) + "b"), expected + "b\"");
    }
    EXPECT_EQ(sim::JsonString("a\xc3"), "\"a" + replaced + "\"");
}

TEST(SimLog, CutsALongText)
{
    EXPECT_EQ(sim::Printable(std::string(160, 'x')), std::string(160, 'x'));
    EXPECT_EQ(sim::Printable(std::string(161, 'x')), std::string(160, 'x') + "...");
}
