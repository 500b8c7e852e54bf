#pragma once

#include "sim/Engine.h"
#include "sim/FaultRules.h"
#include "sim/Faults.h"
#include "sim/Log.h"
#include "sim/Request.h"

#include <Poco/JSON/Object.h>
#include <Poco/Net/TCPServerConnection.h>
#include <Poco/Net/TCPServerConnectionFactory.h>

#include <atomic>
#include <chrono>
#include <cstdint>

namespace sim {

/// What the connections share. It must outlive them.
struct Service
{
    Engine engine;
    FaultRules faults;
    std::chrono::milliseconds delay; ///< Before each reply.
    Log log;
};

/// Serves one client: one request, one reply, one line in the log.
class ConnectionHandler: public Poco::Net::TCPServerConnection
{
public:
    /// The number says the how manyth connection of the run it is.
    ConnectionHandler(const Poco::Net::StreamSocket& socket, Service& service,
                      std::uint64_t number);

    void run() override;

private:
    Poco::JSON::Object AnswerTo(const Request& request, const Fault& fault);

    Service& service;
    const std::uint64_t number;
};

class ConnectionHandlerFactory: public Poco::Net::TCPServerConnectionFactory
{
public:
    explicit ConnectionHandlerFactory(Service& service);

    Poco::Net::TCPServerConnection*
    createConnection(const Poco::Net::StreamSocket& socket) override;

private:
    Service& service;
    std::atomic<std::uint64_t> connections{0};
};

} // namespace sim
