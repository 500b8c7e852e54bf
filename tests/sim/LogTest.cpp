#include "sim/Log.h"

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

TEST(SimLog, CutsALongText)
{
    EXPECT_EQ(sim::Printable(std::string(160, 'x')), std::string(160, 'x'));
    EXPECT_EQ(sim::Printable(std::string(161, 'x')), std::string(160, 'x') + "...");
}
