#pragma once

#include "sim/ClientSocket.h"
#include "sim/Engine.h"

#include <Poco/JSON/Object.h>

#include <string>
#include <vector>

namespace sim {

/// How far the fault lets a connection and its request get.
enum class Reach {
    Queued,   ///< It is not accepted.
    Accepted, ///< Its request need not be read; answer and write are skipped, nothing is sent.
    Read,     ///< Its request is read but not carried out.
    CarriedOut,
};

/// How a connection is served: in three steps, each of which may be wrong on purpose.
struct Fault
{
    const char* name;
    const char* help;
    Reach reach;
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
