#include "sim/Server.h"

#include "sim/Listener.h"

#include <Poco/Net/TCPServerParams.h>

namespace sim {

namespace {

constexpr int maxConnections = 1024; // as many more wait until one of these ends

Poco::Net::TCPServerParams::Ptr ServerParams()
{
    Poco::Net::TCPServerParams::Ptr params = new Poco::Net::TCPServerParams;
    params->setMaxThreads(maxConnections);
    params->setMaxQueued(maxConnections);
    return params;
}

} // namespace

Server::Server(Service& service)
    : service(service), factory(new ConnectionHandlerFactory(service)), threads(2, maxConnections)
{
}

void Server::Listen()
{
    listener = sim::Listen();
    service.log.Write("listening on " + EngineAddress().toString());
}

void Server::Accept()
{
    const bool nobody = service.faults.AcceptNobody();
    if (nobody ? queued.has_value() : server != nullptr) {
        return; // as it is
    }
    if (queued || server) {
        Close();
        Listen();
    }
    nobody ? AcceptNobody() : AcceptEverybody();
}

void Server::AcceptEverybody()
{
    server = std::make_unique<Poco::Net::TCPServer>(factory, threads, *listener, ServerParams());
    server->start();
}

void Server::AcceptNobody()
{
    // A queue of length 0 has room for one.
    listener->listen(0);
    queued.emplace(EngineAddress());
}

void Server::Close()
{
    if (server) {
        server->stop();
        server.reset();
    }
    queued.reset();
    listener.reset();
}

} // namespace sim
