#pragma once

#include "sim/Clock.h"

#include <cstddef>
#include <optional>
#include <string>

namespace sim {

/// The update of all modules, one after the other, a second each.
class Update
{
public:
    void Start(TimePoint now, std::size_t moduleCount);
    bool IsRunning(TimePoint now) const;
    /// The progress, as a sentence.
    std::string Describe(TimePoint now) const;

private:
    std::size_t ModulesDone(TimePoint now) const;

    std::optional<TimePoint> start; // empty until the first update
    std::size_t modules = 0;
};

} // namespace sim
