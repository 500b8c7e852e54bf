#pragma once

#include "sim/Engine.h"
#include "sim/FaultRules.h"
#include "sim/Faults.h"
#include "sim/Request.h"

#include <Poco/JSON/Object.h>
#include <Poco/Net/TCPServerConnection.h>
#include <Poco/Net/TCPServerConnectionFactory.h>

#include <chrono>

namespace sim {

/// What the connections share. It must outlive them.
struct Service
{
    Engine engine;
    FaultRules faults;
    std::chrono::milliseconds delay; ///< Before each reply.
};

/// Serves one client: one request, one reply, one line in the log.
class ConnectionHandler: public Poco::Net::TCPServerConnection
{
public:
    ConnectionHandler(const Poco::Net::StreamSocket& socket, Service& service);

    void run() override;

private:
    Poco::JSON::Object AnswerTo(const Request& request, const Fault& fault);

    Service& service;
};

class ConnectionHandlerFactory: public Poco::Net::TCPServerConnectionFactory
{
public:
    explicit ConnectionHandlerFactory(Service& service);

    Poco::Net::TCPServerConnection*
    createConnection(const Poco::Net::StreamSocket& socket) override;

private:
    Service& service;
};

} // namespace sim
