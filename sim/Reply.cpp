#include "sim/Reply.h"

#include <sstream>

namespace sim {

Poco::JSON::Object MakeReply(ResultCode code, const std::string& description)
{
    Poco::JSON::Object reply;
    reply.set("resultCode", static_cast<int>(code));
    reply.set("description", description);
    return reply;
}

std::string Compact(const Poco::JSON::Object& object)
{
    std::ostringstream text;
    object.stringify(text);
    return text.str();
}

} // namespace sim
