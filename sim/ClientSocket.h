#pragma once

#include <Poco/Net/StreamSocket.h>

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

namespace sim {

using Deadline = std::chrono::steady_clock::time_point;

/// The socket of a connected client. Socket errors are thrown as Poco::Exception.
class ClientSocket
{
public:
    explicit ClientSocket(const Poco::Net::StreamSocket& socket);

    /// Waits for the next bytes and returns their count: 0 if the client has closed its side,
    /// none if the deadline was reached first.
    std::optional<std::size_t> Receive(char* buffer, std::size_t size, Deadline deadline);

    void Send(const std::string& bytes);
    /// Sends a byte at a time, a hundred bytes a second.
    void SendSlowly(const std::string& bytes);

    void WaitForClientToLeave();

    /// Closes the sending side and gives the client time to leave. Closing with unread bytes of
    /// the client would reset the connection and could cost the client the reply.
    void Finish();

    /// Makes the close a reset: the client's next read fails.
    void ResetOnClose();

private:
    Poco::Net::StreamSocket socket;
};

} // namespace sim
