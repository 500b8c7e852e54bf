#include "tests/support/Poco.h"

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace {

/// The table: each series with what it changed. Versions after the last one count as part of it, so
/// that the tests show what they change.
PocoSeries SeriesOf(int minor)
{
    PocoSeries poco;
    // 1.9 and 1.10
    poco.endOfText = "error: #: unexpected end of data";
    poco.unexpectedByte = "error: #: unexpected byte, '%'";
    poco.invalidUtf8 = "error: #: No legal UTF8 found";
    poco.outOfMemory = "error: #: Cannot allocate memory";
    poco.tooLarge = "Value too large.";
    poco.tooSmall = "Value too small.";
    poco.emptyArray = "[\n\n]";
    poco.array = "[\n  1\n]";
    poco.emptyObject = "{\n}";
    poco.object = "{\n  \"a\" : 1\n}";
    poco.beforeArgument = "";
    poco.textsEndAtNul = true;
    poco.nestingIsLimited = false;
    poco.twoToThe64IsZero = true;
    if (minor >= 11) {
        poco.endOfText = "unexpected end of text";
        poco.unexpectedByte = "unexpected byte '%' in value";
        poco.invalidUtf8 = "invalid UTF-8 text";
        poco.outOfMemory = "out of memory";
        poco.object = "{\n  \"a\": 1\n}";
        poco.textsEndAtNul = false;
        poco.nestingIsLimited = true;
    }
    if (minor >= 13) {
        poco.emptyArray = "[]";
        poco.array = "[1]";
        poco.emptyObject = "{}";
        poco.object = R"({"a":1})";
        poco.twoToThe64IsZero = false;
    }
    if (minor >= 14) {
        poco.tooLarge = R"("Value too big")"; // and more: see ReplyMembersTest.cpp
        poco.tooSmall = R"("Value too small")";
        poco.beforeArgument = " ";
    }
    return poco;
}

int MinorVersionUnderTest()
{
    const char* const given = std::getenv("QUORLAN_POCO");
    const std::string version = given != nullptr ? given : QUORLAN_BUILT_POCO;
    int minor = 0;
    if (std::sscanf(version.c_str(), "1.%d", &minor) != 1 || minor < 9) {
        throw std::invalid_argument("\"" + version + "\" is no version of POCO from 1.9 on");
    }
    return minor;
}

std::string ParserError(std::string text, int line, char byte)
{
    const auto replace = [&text](char mark, const std::string& value) {
        const std::size_t position = text.find(mark);
        if (position != std::string::npos) {
            text.replace(position, 1, value);
        }
    };
    replace('#', std::to_string(line));
    replace('%', std::string(1, byte));
    return "JSON Exception: " + text;
}

} // namespace

std::string PocoSeries::EndOfText(int line) const
{
    return ParserError(endOfText, line, ' ');
}

std::string PocoSeries::UnexpectedByte(char byte) const
{
    const std::string error = ParserError(unexpectedByte, 1, byte);
    return error.substr(0, error.find('\0')); // where POCO's text ends, too
}

std::string PocoSeries::InvalidUtf8() const
{
    return ParserError(invalidUtf8, 1, ' ');
}

std::string PocoSeries::OutOfMemory() const
{
    return ParserError(outOfMemory, 1, ' ');
}

const PocoSeries& PocoUnderTest()
{
    static const PocoSeries series = SeriesOf(MinorVersionUnderTest());
    return series;
}
