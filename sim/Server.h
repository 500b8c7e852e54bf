#pragma once

#include "sim/ConnectionHandler.h"

#include <Poco/Net/ServerSocket.h>
#include <Poco/Net/StreamSocket.h>
#include <Poco/Net/TCPServer.h>
#include <Poco/Net/TCPServerConnectionFactory.h>
#include <Poco/ThreadPool.h>

#include <memory>
#include <optional>

namespace sim {

/// The server on the engine's address: what becomes of those who connect.
class Server
{
public:
    explicit Server(Service& service);

    /// Listens there, so that connections are no longer refused; they wait until the next call.
    /// Throws StartError with EXIT_UNAVAILABLE.
    void Listen();
    /// Accepts everybody or, where a fault wants that, nobody; to be called again after the faults
    /// have changed.
    void Accept();
    /// Stops listening; connections are refused. Those that are being served are not affected.
    void Close();

private:
    void AcceptEverybody();
    void AcceptNobody();

    Service& service;
    Poco::Net::TCPServerConnectionFactory::Ptr factory;
    Poco::ThreadPool threads;
    std::optional<Poco::Net::ServerSocket> listener;
    std::unique_ptr<Poco::Net::TCPServer> server;  // present while everybody is accepted
    std::optional<Poco::Net::StreamSocket> queued; // present while nobody is: it fills the queue
};

} // namespace sim
