#pragma once

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
    explicit Server(Poco::Net::TCPServerConnectionFactory::Ptr factory);

    /// Listens there, so that connections are no longer refused; they wait until the next call.
    /// Throws StartError with EXIT_UNAVAILABLE.
    void Listen();
    void AcceptEverybody();
    /// Leaves connections unanswered: the queue is full.
    void AcceptNobody();
    /// Stops listening; connections are refused. Those that are being served are not affected.
    void Close();

private:
    Poco::ThreadPool threads;
    Poco::Net::TCPServerConnectionFactory::Ptr factory;
    std::optional<Poco::Net::ServerSocket> listener;
    std::unique_ptr<Poco::Net::TCPServer> server;  // none where nobody is accepted
    std::optional<Poco::Net::StreamSocket> queued; // the one that fills the queue
};

} // namespace sim
