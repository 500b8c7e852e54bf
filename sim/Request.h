#pragma once

#include "sim/ClientSocket.h"

#include <Poco/JSON/Object.h>

#include <string>

namespace sim {

/// What a client sent.
struct Request
{
    std::string text;               ///< As it arrived, at most 64 KiB of it.
    Poco::JSON::Object::Ptr object; ///< Null if there is a problem.
    std::string problem;            ///< Why it is no request, as a sentence for the client.
};

/// Reads one request. It is one if it is a JSON object of at most 64 KiB and complete within 5
/// seconds.
Request ReadRequest(ClientSocket& client);

} // namespace sim
