#pragma once

#include <Poco/Net/StreamSocket.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <set>

namespace sim {

/// The sockets in use, so that the end of the simulator need not wait for any client.
class OpenConnections
{
public:
    /// After EndAll the socket is shut down at once.
    void Add(const Poco::Net::StreamSocket& socket);
    /// Must be called before the socket is closed: its descriptor may then belong to another.
    void Remove(const Poco::Net::StreamSocket& socket);

    /// Shuts every socket down, which ends all waiting on it in other threads.
    void EndAll();

    /// Waits. True as soon as EndAll is called, or was before.
    bool EndWithin(std::chrono::milliseconds time);

private:
    static void ShutDown(Poco::Net::StreamSocket socket);

    std::mutex mutex;
    std::condition_variable endCalled;
    bool ended = false;
    std::set<Poco::Net::StreamSocket> sockets;
};

} // namespace sim
