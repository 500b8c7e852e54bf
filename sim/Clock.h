#pragma once

#include <chrono>
#include <functional>

namespace sim {

using TimePoint = std::chrono::steady_clock::time_point;

/// Returns the time. Tests pass one that they move by hand.
using Clock = std::function<TimePoint()>;

} // namespace sim
