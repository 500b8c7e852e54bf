#pragma once

#include "sim/Channel.h"

#include <Poco/JSON/Object.h>

#include <stdexcept>
#include <string>

namespace sim {

/// A request that is none; the text says why, as a sentence for the client.
using BadRequest = std::runtime_error;

/// Reads the text of one request and puts what arrived into text, also when it throws BadRequest
/// for one that is too long, that is no JSON object or that is not complete within 5 seconds.
void ReadRequest(Channel& channel, std::string& text);

/// Throws BadRequest for a text that is not a JSON object.
Poco::JSON::Object::Ptr ParseRequest(const std::string& text);

} // namespace sim
