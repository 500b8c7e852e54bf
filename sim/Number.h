#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace sim {

/// The number that a text of nothing but decimal digits stands for, if it is at most max.
std::optional<std::uint64_t> ParseWhole(const std::string& text, std::uint64_t max);

} // namespace sim
