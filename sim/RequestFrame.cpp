#include "sim/RequestFrame.h"

#include <Poco/Ascii.h>

namespace sim {

RequestFrame::Progress RequestFrame::Take(const char* bytes, std::size_t count)
{
    for (std::size_t i = 0; i < count && progress == Progress::Incomplete; ++i) {
        progress = TakeByte(bytes[i]);
    }
    return progress;
}

RequestFrame::Progress RequestFrame::TakeByte(char byte)
{
    if (text.size() == maxLength) {
        return Progress::TooLong;
    }
    text += byte;
    if (inString) {
        FollowString(byte);
        return Progress::Incomplete;
    }
    if (depth == 0) {
        depth = byte == '{' ? 1 : 0;
        const bool mayStillBegin = depth == 1 || Poco::Ascii::isSpace(byte);
        return mayStillBegin ? Progress::Incomplete : Progress::NotAnObject;
    }
    if (byte == '"') {
        inString = true;
    } else if (byte == '{') {
        ++depth;
    } else if (byte == '}') {
        --depth;
    }
    return depth == 0 ? Progress::Complete : Progress::Incomplete;
}

void RequestFrame::FollowString(char byte)
{
    if (escaped) {
        escaped = false;
    } else if (byte == '\\') {
        escaped = true;
    } else if (byte == '"') {
        inString = false;
    }
}

} // namespace sim
