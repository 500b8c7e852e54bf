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

std::optional<double> ParseSeconds(const std::string& text)
{
    constexpr int maxSeconds = 86400;
    double seconds = 0;
    if (text.find_first_not_of("0123456789.") != std::string::npos ||
        !Poco::NumberParser::tryParseFloat(text, seconds) || seconds > maxSeconds) {
        return std::nullopt;
    }
    return seconds;
}

} // namespace sim
