#pragma once

#include "sim/ClientSocket.h"
#include "sim/Engine.h"

#include <Poco/JSON/Object.h>

#include <string>
#include <vector>

namespace sim {

/// How every connection is served: in three steps, each of which may be wrong on purpose.
struct Fault
{
    const char* name;
    const char* help;
    bool readsRequest; ///< If false, answer and write are skipped and nothing is sent.
    Poco::JSON::Object (*answer)(Engine& engine, const Poco::JSON::Object& request);
    std::string (*write)(const Poco::JSON::Object& reply);
    /// Leaves the connection ready to be closed.
    void (*send)(ClientSocket& client, const std::string& text);
};

/// Every step as it should be; its name is empty.
const Fault& NoFault();

const std::vector<Fault>& AllFaults();

/// Throws StartError with EXIT_USAGE for a name that is not in AllFaults().
const Fault& FindFault(const std::string& name);

} // namespace sim
