#include "sim/Number.h"

#include <Poco/Ascii.h>
#include <Poco/NumberParser.h>

#include <algorithm>

namespace sim {

std::optional<std::uint64_t> ParseWhole(const std::string& text, std::uint64_t max)
{
    Poco::UInt64 number = 0;
    if (!std::all_of(text.begin(), text.end(), Poco::Ascii::isDigit) ||
        !Poco::NumberParser::tryParseUnsigned64(text, number) || number > max) {
        return std::nullopt;
    }
    return number;
}

} // namespace sim
