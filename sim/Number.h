#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace sim {

/// The number that a text of nothing but decimal digits stands for, if it is at most max.
std::optional<std::uint64_t> ParseWhole(const std::string& text, std::uint64_t max);

/// A number of seconds from 0 to 86400, such as 2 or 0.5.
std::optional<double> ParseSeconds(const std::string& text);

} // namespace sim
