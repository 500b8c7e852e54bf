#pragma once

#include <cstddef>
#include <string>

namespace sim {

/// Cuts one JSON object out of a byte stream. The client neither ends the request with anything
/// nor closes its side, so the closing brace of the outermost object is the only sign of the end.
/// The parser decides whether the text between the braces is valid.
class RequestFrame
{
public:
    enum class Progress { Incomplete, Complete, NotAnObject, TooLong };

    static constexpr std::size_t maxLength = 65536;

    /// Takes the next bytes. Whatever comes after the end of the object is dropped, and so is
    /// everything after a progress other than Incomplete.
    Progress Take(const char* bytes, std::size_t count);

    /// What was taken so far.
    const std::string& Text() const { return text; }

private:
    Progress TakeByte(char byte);
    void FollowString(char byte);

    std::string text;
    Progress progress = Progress::Incomplete;
    int depth = 0;
    bool inString = false;
    bool escaped = false;
};

} // namespace sim
