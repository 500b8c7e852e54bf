// The request object, the same for every command.

#include "engine/Request.h"

Poco::JSON::Object MakeRequest(const std::string& command, const std::string& key,
                               const std::string& value)
{
    Poco::JSON::Object request;
    request.set("command", command);
    if (!key.empty()) {
        request.set(key, value);
    }
    return request;
}
