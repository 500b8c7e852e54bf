#pragma once

#include "sim/Engine.h"
#include "sim/Faults.h"
#include "sim/Request.h"

#include <Poco/JSON/Object.h>
#include <Poco/Net/TCPServerConnection.h>
#include <Poco/Net/TCPServerConnectionFactory.h>

#include <string>

namespace sim {

/// Serves one client: one request, one reply, one line in the log. The engine and the fault must
/// outlive it.
class ConnectionHandler: public Poco::Net::TCPServerConnection
{
public:
    ConnectionHandler(const Poco::Net::StreamSocket& socket, Engine& engine, const Fault& fault);

    void run() override;

private:
    Poco::JSON::Object AnswerTo(const Request& request);
    void LogExchange(const std::string& request, const std::string& reply) const;

    Engine& engine;
    const Fault& fault;
};

class ConnectionHandlerFactory: public Poco::Net::TCPServerConnectionFactory
{
public:
    ConnectionHandlerFactory(Engine& engine, const Fault& fault);

    Poco::Net::TCPServerConnection*
    createConnection(const Poco::Net::StreamSocket& socket) override;

private:
    Engine& engine;
    const Fault& fault;
};

} // namespace sim
