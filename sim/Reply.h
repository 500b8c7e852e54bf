#pragma once

#include <Poco/JSON/Object.h>

#include <string>

namespace sim {

/// The "resultCode" of a reply. It becomes the exit status of the client, which uses 64 to 78 for
/// its own failures.
enum class ResultCode : int {
    Success = 0,
    BadRequest = 1,
    UnknownCommand = 2,
    UnknownModule = 3,
    WrongState = 4,
    DebugModeDisabled = 5,
    FaultInjected = 6,
};

Poco::JSON::Object MakeReply(ResultCode code, const std::string& description);

/// JSON without spaces and line breaks.
std::string Compact(const Poco::JSON::Object& object);

} // namespace sim
