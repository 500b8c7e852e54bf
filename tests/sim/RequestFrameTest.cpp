#include "sim/RequestFrame.h"

#include <gtest/gtest.h>

#include <ostream>

using Progress = sim::RequestFrame::Progress;

namespace {

struct Taken
{
    Progress progress;
    std::string text;

    bool operator==(const Taken& other) const
    {
        return progress == other.progress && text == other.text;
    }
};

void PrintTo(const Taken& taken, std::ostream* stream)
{
    *stream << "progress " << static_cast<int>(taken.progress) << ", text " << taken.text;
}

Taken TakeWhole(const std::string& bytes)
{
    sim::RequestFrame frame;
    const Progress progress = frame.Take(bytes.data(), bytes.size());
    return {progress, frame.Text()};
}

Taken TakeByByte(const std::string& bytes)
{
    sim::RequestFrame frame;
    Progress progress = Progress::Incomplete;
    for (const char byte : bytes) {
        progress = frame.Take(&byte, 1);
    }
    return {progress, frame.Text()};
}

/// An object of exactly length bytes.
std::string ObjectOfLength(std::size_t length)
{
    const std::string begin = R"({"x":")";
    const std::string end = R"("})";
    return begin + std::string(length - begin.size() - end.size(), 'x') + end;
}

void ExpectComplete(const std::string& object)
{
    const Taken expected = {Progress::Complete, object};
    EXPECT_EQ(TakeWhole(object), expected);
    EXPECT_EQ(TakeByByte(object), expected);
    EXPECT_EQ(TakeWhole(object.substr(0, object.size() - 1)).progress, Progress::Incomplete);
}

} // namespace

TEST(RequestFrame, EndsAtTheClosingBrace)
{
    ExpectComplete(R"({"command":"list"})");
}

TEST(RequestFrame, MayBeAnEmptyObject)
{
    ExpectComplete("{}");
}

TEST(RequestFrame, GoesOnAfterTheEndOfAnInnerObject)
{
    ExpectComplete(R"({"a":{"b":{}},"c":[{"d":1}]})");
}

TEST(RequestFrame, TakesABraceInAStringAsText)
{
    ExpectComplete(R"({"a":"}{}}"})");
}

TEST(RequestFrame, TakesAQuoteAfterABackslashAsText)
{
    ExpectComplete(R"({"a":"\"}"})");
}

TEST(RequestFrame, EndsAStringAfterTwoBackslashes)
{
    ExpectComplete(R"({"a":"\\"})");
}

TEST(RequestFrame, MayBeginWithSpaces)
{
    ExpectComplete(" \r\n\t{\"command\":\"list\"}");
}

TEST(RequestFrame, DropsWhatFollowsTheObject)
{
    const Taken expected = {Progress::Complete, "{}"};
    EXPECT_EQ(TakeWhole("{}\n{\"more\":1}"), expected);
    EXPECT_EQ(TakeByByte("{}\n{\"more\":1}"), expected);
}

TEST(RequestFrame, IsIncompleteAtFirst)
{
    const Taken expected = {Progress::Incomplete, ""};
    EXPECT_EQ(TakeWhole(""), expected);
}

TEST(RequestFrame, RefusesWhatIsNoObjectAtItsFirstByte)
{
    for (const char* text : {"[1]", "\"text\"", "7", "hello", "}", " null"}) {
        EXPECT_EQ(TakeWhole(text).progress, Progress::NotAnObject) << text;
    }
}

TEST(RequestFrame, MayBeSixtyFourKibibytesLong)
{
    ExpectComplete(ObjectOfLength(65536));
}

TEST(RequestFrame, RefusesOneByteMore)
{
    const std::string object = ObjectOfLength(65537);
    const Taken expected = {Progress::TooLong, object.substr(0, 65536)};

    EXPECT_EQ(TakeWhole(object), expected);
}

TEST(RequestFrame, IsTooLongWithSpacesAlone)
{
    EXPECT_EQ(TakeWhole(std::string(65537, ' ')).progress, Progress::TooLong);
}
