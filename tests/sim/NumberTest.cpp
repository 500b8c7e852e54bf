#include "sim/Number.h"

#include <gtest/gtest.h>

TEST(SimNumber, IsNothingButDigits)
{
    EXPECT_EQ(sim::ParseWhole("0", 10), 0U);
    EXPECT_EQ(sim::ParseWhole("007", 10), 7U);
    for (const char* const text :
         {"", "-1", "+1", "1.5", " 1", "1 ", "0x1", "1e0", "one", "1,000"}) {
        EXPECT_EQ(sim::ParseWhole(text, 10), std::nullopt) << text;
    }
}

TEST(SimNumber, OfSecondsMayHaveAFraction)
{
    EXPECT_EQ(sim::ParseSeconds("0"), 0.0);
    EXPECT_EQ(sim::ParseSeconds("2"), 2.0);
    EXPECT_EQ(sim::ParseSeconds("0.25"), 0.25);
    EXPECT_EQ(sim::ParseSeconds("86400"), 86400.0);
    for (const char* const text : {"", "-1", "+1", "1.2.3", "86400.1", "1e3", "inf", "nan", "."}) {
        EXPECT_EQ(sim::ParseSeconds(text), std::nullopt) << text;
    }
}

TEST(SimNumber, IsAtMostTheGreatestThatIsAllowed)
{
    EXPECT_EQ(sim::ParseWhole("10", 10), 10U);
    EXPECT_EQ(sim::ParseWhole("11", 10), std::nullopt);
    EXPECT_EQ(sim::ParseWhole("99999999999999999999999", 10), std::nullopt);
}
