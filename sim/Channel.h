#pragma once

#include "sim/OpenConnections.h"

#include <Poco/Net/StreamSocket.h>

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

namespace sim {

using Deadline = std::chrono::steady_clock::time_point;

/// One client's connection, from accepting it to closing it. Socket errors are thrown as
/// Poco::Exception; waiting ends early, as if the client had left, when the simulator ends.
class Channel
{
public:
    Channel(const Poco::Net::StreamSocket& connected, OpenConnections& openConnections);
    ~Channel();
    Channel(const Channel&) = delete;
    Channel& operator=(const Channel&) = delete;

    /// Waits for the next bytes. Their count is 0 when the client has closed its side; there is
    /// none when the deadline was reached first.
    std::optional<std::size_t> Receive(char* buffer, std::size_t size, Deadline deadline);

    void Send(const std::string& bytes);
    /// Sends a byte at a time, a hundred bytes a second.
    void SendSlowly(const std::string& bytes);

    void WaitForClientToLeave();

    /// Tells the client that nothing more comes, and gives it time to leave. Closing with unread
    /// bytes of the client would reset the connection and could cost it the reply.
    void Finish();

    /// Makes the close a reset: the client's next read fails.
    void ResetOnClose();

private:
    Poco::Net::StreamSocket socket;
    OpenConnections& open;
};

} // namespace sim
