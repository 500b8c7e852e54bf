#include "term/Styles.h"

#include <gtest/gtest.h>

#include <iostream>
#include <sstream>

TEST(Styles, AreOffAtStart)
{
    EXPECT_FALSE(useColors);
}

TEST(Styles, AreNeverActiveOnAStreamThatIsNoStandardStream)
{
    useColors = true;
    std::ostringstream stream;

    stream << Bold << Red << Green << Yellow << Blue << Reset;

    EXPECT_FALSE(IsStylingActive(stream));
    EXPECT_EQ(stream.str(), "");
}

TEST(Styles, CanBeChosenAtRunTime)
{
    std::ostringstream stream;
    auto* const style = stream.good() ? Green : Red;

    EXPECT_EQ(&style(stream), &stream);
}
