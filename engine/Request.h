#pragma once

#include <Poco/JSON/Object.h>

#include <string>

/// The request for a command, with at most one argument: {"command": command, key: value}, or
/// the command alone where key is empty. Values are always JSON strings, exactly as typed, also
/// the "true" and "false" of the debug command. The keys are sent in ascending byte order.
Poco::JSON::Object MakeRequest(const std::string& command, const std::string& key = "",
                               const std::string& value = "");
