#include "sim/State.h"

#include <Poco/Ascii.h>

#include <algorithm>

namespace sim {

bool IsModuleName(const std::string& name)
{
    constexpr std::size_t longestName = 16;
    return !name.empty() && name.size() <= longestName &&
           std::all_of(name.begin(), name.end(), Poco::Ascii::isAlphaNumeric);
}

bool HasProcess(const std::string& moduleState)
{
    return moduleState == "running" || moduleState == "starting" || moduleState == "stopping" ||
           moduleState == "reconfiguring";
}

} // namespace sim
