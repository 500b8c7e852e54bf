#include "term/Field.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

std::string Text(const Field& field)
{
    std::ostringstream stream;
    stream << std::right << field;
    return stream.str();
}

} // namespace

TEST(Field, PadsAShortTextOnItsRight)
{
    EXPECT_EQ(Text({"abc", 5}), "abc  ");
    EXPECT_EQ(Text({"", 3}), "   ");
}

TEST(Field, NeverCutsALongText)
{
    EXPECT_EQ(Text({"abcde", 5}), "abcde");
    EXPECT_EQ(Text({"abcdef", 5}), "abcdef");
}

TEST(Field, LeavesNoWidthBehind)
{
    std::ostringstream stream;
    stream << Field{"a", 4} << "b";

    EXPECT_EQ(stream.str(), "a   b");
}
