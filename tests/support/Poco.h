#pragma once

#include <string>

/// What one version of POCO words, converts or limits in another way than the next. The tool passes
/// it on as it is, so the tests expect it.
struct PocoSeries
{
    // What the JSON parser objects to, as texts in which "#" is the line and "%" the byte.
    std::string endOfText;
    std::string unexpectedByte;
    std::string invalidUtf8;
    std::string outOfMemory;

    // What is wrong with a number that is no int.
    std::string tooLarge;
    std::string tooSmall;

    // [], [1], {} and {"a":1} as text.
    std::string emptyArray;
    std::string array;
    std::string emptyObject;
    std::string object;

    std::string beforeArgument; // of a short option on the help screen
    bool textsEndAtNul;         // which JSON writes as \u0000
    bool nestingIsLimited;      // to 128 levels
    bool twoToThe64IsZero;      // otherwise a reply with this number is refused

    std::string EndOfText(int line = 1) const;
    std::string UnexpectedByte(char byte) const;
    std::string InvalidUtf8() const;
    std::string OutOfMemory() const;
};

/// What POCO is like in the tool under test. Its version is that of the same build or, where
/// QUORLAN_BINARY names another tool, what the environment variable QUORLAN_POCO says, such as
/// 1.14.2.
const PocoSeries& PocoUnderTest();
