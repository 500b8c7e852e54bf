// The only network code: one request out, one reply in, over a connection of its own.

#include "app/Quorlan.h"

#include <Poco/Exception.h>
#include <Poco/Net/SocketAddress.h>
#include <Poco/Net/SocketStream.h>
#include <Poco/Net/StreamSocket.h>
#include <Poco/StreamCopier.h>
#include <Poco/Timespan.h>

#include <iostream>

namespace {

constexpr const char* vantrelHost = "127.0.0.1";
constexpr Poco::UInt16 vantrelPort = 7777;
constexpr long replyWaitSeconds = 5; // for each single wait for data, not for the whole reply
constexpr std::size_t replyBlockSize = 8192;

} // namespace

bool Quorlan::SendRequest(const Poco::JSON::Object& request, std::string& reply)
{
    reply.clear();
    const Poco::Net::SocketAddress vantrel(vantrelHost, vantrelPort);
    try {
        Poco::Net::StreamSocket socket(vantrel);
        {
            // The sending side stays open after this scope: the engine knows the end of a request
            // by its closing brace. One that waited for end-of-file would wait forever.
            Poco::Net::SocketStream stream(socket);
            request.stringify(stream, 0, -1);
            stream.flush();
        }
        socket.setReceiveTimeout(Poco::Timespan(replyWaitSeconds, 0));
        socket.setBlocking(true);
        // The streams swallow the socket's exceptions: a stalled or broken connection ends the
        // copy quietly, and what had arrived in whole blocks goes to the parser.
        Poco::Net::SocketStream stream(socket);
        Poco::StreamCopier::copyToString(stream, reply, replyBlockSize);
        return true;
    } catch (const Poco::TimeoutException& exception) {
        std::cout << "Vantrel failed to respond in time: " << vantrel.toString() << "; "
                  << exception.what() << std::endl;
    } catch (const Poco::Exception& exception) {
        std::cout << "Failed to connect to Vantrel at " << vantrel.toString() << "; "
                  << exception.what() << std::endl;
    }
    return false;
}
