#include "sim/Listener.h"

#include "sim/StartError.h"

#include <Poco/Exception.h>
#include <Poco/Net/ServerSocketImpl.h>
#include <Poco/Util/Application.h>

#include <fcntl.h>
#include <sys/socket.h>

namespace sim {

namespace {

/// Allows listening while connections of the last run still linger. POCO's own way to do so also
/// allows several simulators to listen at once, each of which would get some of the clients.
class ReusableSocketImpl: public Poco::Net::ServerSocketImpl
{
public:
    ReusableSocketImpl()
    {
        init(AF_INET);
        setReuseAddress(true);
    }
};

class ListeningSocket: public Poco::Net::ServerSocket
{
public:
    explicit ListeningSocket(const Poco::Net::SocketAddress& address)
        : ServerSocket(new ReusableSocketImpl, true)
    {
        fcntl(impl()->sockfd(), F_SETFD, FD_CLOEXEC); // it is not the command's
        bind(address, false);
        listen();
    }
};

} // namespace

Poco::Net::SocketAddress EngineAddress()
{
    return {"127.0.0.1", 7777};
}

Poco::Net::ServerSocket Listen()
{
    try {
        return ListeningSocket(EngineAddress());
    } catch (const Poco::Exception& exception) {
        throw StartError(Poco::Util::Application::EXIT_UNAVAILABLE,
                         "cannot listen: " + exception.displayText());
    }
}

} // namespace sim
