#include "sim/OpenConnections.h"

#include <Poco/Exception.h>

namespace sim {

void OpenConnections::Add(const Poco::Net::StreamSocket& socket)
{
    const std::lock_guard<std::mutex> lock(mutex);
    sockets.insert(socket);
    if (ended) {
        ShutDown(socket);
    }
}

void OpenConnections::Remove(const Poco::Net::StreamSocket& socket)
{
    const std::lock_guard<std::mutex> lock(mutex);
    sockets.erase(socket);
}

void OpenConnections::EndAll()
{
    const std::lock_guard<std::mutex> lock(mutex);
    ended = true;
    for (const Poco::Net::StreamSocket& socket : sockets) {
        ShutDown(socket);
    }
    endCalled.notify_all();
}

bool OpenConnections::EndWithin(std::chrono::milliseconds time)
{
    std::unique_lock<std::mutex> lock(mutex);
    return endCalled.wait_for(lock, time, [this] { return ended; });
}

void OpenConnections::ShutDown(Poco::Net::StreamSocket socket)
{
    try {
        socket.shutdown();
    } catch (const Poco::Exception&) {
        // The client was faster: there is nothing left to shut down.
    }
}

} // namespace sim
