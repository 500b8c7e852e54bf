#include "sim/Update.h"

#include <algorithm>

namespace sim {

void Update::Start(TimePoint now, std::size_t moduleCount)
{
    start = now;
    modules = moduleCount;
}

bool Update::IsRunning(TimePoint now) const
{
    return start && ModulesDone(now) < modules;
}

std::string Update::Describe(TimePoint now) const
{
    if (!start) {
        return "No update has been requested";
    }
    const std::string done =
        std::to_string(ModulesDone(now)) + " of " + std::to_string(modules) + " modules done";
    return (IsRunning(now) ? "Update in progress: " : "Update finished: ") + done;
}

std::size_t Update::ModulesDone(TimePoint now) const
{
    const auto elapsed = std::chrono::duration_cast<std::chrono::seconds>(now - *start).count();
    return std::min(modules, static_cast<std::size_t>(elapsed));
}

} // namespace sim
