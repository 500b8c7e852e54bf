#include "sim/Log.h"

#include <Poco/Ascii.h>

#include <algorithm>
#include <iostream>

namespace sim {

void Log(const std::string& line)
{
    // In one piece: lines of several threads must not mix.
    std::cerr << "vantrel-sim: " + line + "\n" << std::flush;
}

std::string Printable(const std::string& text)
{
    constexpr std::size_t maxLength = 160;
    if (text.empty()) {
        return "(nothing)";
    }
    std::string line = text.substr(0, maxLength);
    std::replace_if(
        line.begin(), line.end(), [](char c) { return !Poco::Ascii::isPrintable(c); }, '?');
    return text.size() > maxLength ? line + "..." : line;
}

} // namespace sim
