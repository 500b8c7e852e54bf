#pragma once

#include "sim/Engine.h"
#include "sim/Faults.h"
#include "sim/OpenConnections.h"
#include "sim/Request.h"

#include <Poco/JSON/Object.h>
#include <Poco/Net/TCPServerConnection.h>
#include <Poco/Net/TCPServerConnectionFactory.h>

#include <string>

namespace sim {

/// Serves one client: one request, one reply, one line in the log. Outlived by all it is given.
class Connection: public Poco::Net::TCPServerConnection
{
public:
    Connection(const Poco::Net::StreamSocket& socket, Engine& simulated, const Fault& treatment,
               OpenConnections& openConnections);

    void run() override;

private:
    Poco::JSON::Object AnswerTo(const Request& request);
    void LogExchange(const std::string& request, const std::string& reply) const;

    Engine& engine;
    const Fault& fault;
    OpenConnections& open;
};

class ConnectionFactory: public Poco::Net::TCPServerConnectionFactory
{
public:
    ConnectionFactory(Engine& simulated, const Fault& treatment, OpenConnections& openConnections);

    Poco::Net::TCPServerConnection*
    createConnection(const Poco::Net::StreamSocket& socket) override;

private:
    Engine& engine;
    const Fault& fault;
    OpenConnections& open;
};

} // namespace sim
