// The connections that the end of the simulator shuts down.

#include "sim/OpenConnections.h"

#include <gtest/gtest.h>

#include <Poco/Net/ServerSocket.h>
#include <Poco/Net/SocketAddress.h>
#include <Poco/Net/StreamSocket.h>
#include <Poco/Timespan.h>

using Poco::Net::ServerSocket;
using Poco::Net::SocketAddress;
using Poco::Net::StreamSocket;

namespace {

/// Both ends of a connection.
struct Pair
{
    ServerSocket listener{SocketAddress("127.0.0.1", 0)};
    StreamSocket client{listener.address()};
    StreamSocket accepted{listener.acceptConnection()};
};

/// Waits for what the other end sends; whether it has ended the connection instead. Throws when
/// neither happens for a long time.
bool IsAtItsEnd(StreamSocket& socket)
{
    socket.setReceiveTimeout(Poco::Timespan(30, 0));
    char byte = 0;
    return socket.receiveBytes(&byte, 1) == 0;
}

} // namespace

TEST(OpenConnections, AreShutDownAtTheEnd)
{
    Pair pair;
    sim::OpenConnections open;
    open.Add(pair.accepted);

    open.EndAll();

    EXPECT_TRUE(IsAtItsEnd(pair.client));
}

TEST(OpenConnections, AddedAfterTheEndAreShutDownAtOnce)
{
    Pair pair;
    sim::OpenConnections open;
    open.EndAll();

    open.Add(pair.accepted);

    EXPECT_TRUE(IsAtItsEnd(pair.client));
}

TEST(OpenConnections, RemovedBeforeTheEndAreLeftAlone)
{
    Pair pair;
    sim::OpenConnections open;
    open.Add(pair.accepted);
    open.Remove(pair.accepted);

    open.EndAll();

    pair.accepted.sendBytes("x", 1);
    EXPECT_FALSE(IsAtItsEnd(pair.client));
}

TEST(OpenConnections, ThatTheClientBrokeDoNotDisturbTheEndOfOthers)
{
    Pair broken;
    Pair other;
    sim::OpenConnections open;
    open.Add(broken.accepted);
    open.Add(other.accepted);
    broken.client.setLinger(true, 0);
    broken.client.close(); // a reset
    broken.accepted.poll(Poco::Timespan(60, 0), Poco::Net::Socket::SELECT_READ);

    EXPECT_NO_THROW(open.EndAll());

    EXPECT_TRUE(IsAtItsEnd(other.client));
}
