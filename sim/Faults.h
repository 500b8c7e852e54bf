#pragma once

#include "sim/ClientSocket.h"
#include "sim/Engine.h"

#include <Poco/JSON/Object.h>

#include <string>
#include <vector>

namespace sim {

/// A way to treat every connection. Each step is done as it should be, or wrongly on purpose.
struct Fault
{
    const char* name;
    const char* help;
    bool readsRequest; ///< False: answer and write are not used, and an empty text is sent.
    Poco::JSON::Object (*answer)(Engine& engine, const Poco::JSON::Object& request);
    std::string (*write)(const Poco::JSON::Object& reply);
    /// Leaves the connection ready to be closed.
    void (*send)(ClientSocket& client, const std::string& text);
};

/// The treatment without any fault; its name is empty.
const Fault& NoFault();

const std::vector<Fault>& AllFaults();

/// Throws StartError with EXIT_USAGE for a name that is not in AllFaults().
const Fault& FindFault(const std::string& name);

} // namespace sim
