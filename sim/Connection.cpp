#include "sim/Connection.h"

#include "sim/Log.h"
#include "sim/Reply.h"
#include "sim/Request.h"

#include <Poco/Exception.h>

namespace sim {

Connection::Connection(const Poco::Net::StreamSocket& socket, Engine& simulated,
                       const Fault& treatment, OpenConnections& openConnections)
    : TCPServerConnection(socket), engine(simulated), fault(treatment), open(openConnections)
{
}

void Connection::run()
{
    try {
        Channel channel(socket(), open);
        Serve(channel);
    } catch (const Poco::Exception& exception) {
        Log("connection lost: " + Printable(exception.displayText()));
    }
}

void Connection::Serve(Channel& channel)
{
    const std::string faultNote = *fault.name == '\0' ? "" : std::string(" [") + fault.name + "]";
    std::string request;
    std::string text;
    if (fault.readsRequest) {
        text = fault.write(ReplyTo(channel, request));
    }
    Log(Printable(request) + " -> " + Printable(text) + faultNote);
    fault.send(channel, text);
}

Poco::JSON::Object Connection::ReplyTo(Channel& channel, std::string& request)
{
    try {
        ReadRequest(channel, request);
        return fault.answer(engine, *ParseRequest(request));
    } catch (const BadRequest& problem) {
        return MakeReply(ResultCode::badRequest, problem.what());
    }
}

ConnectionFactory::ConnectionFactory(Engine& simulated, const Fault& treatment,
                                     OpenConnections& openConnections)
    : engine(simulated), fault(treatment), open(openConnections)
{
}

Poco::Net::TCPServerConnection*
ConnectionFactory::createConnection(const Poco::Net::StreamSocket& socket)
{
    return new Connection(socket, engine, fault, open);
}

} // namespace sim
