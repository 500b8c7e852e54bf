#include "sim/ConnectionHandler.h"

#include "sim/ClientSocket.h"
#include "sim/Log.h"
#include "sim/Reply.h"

#include <Poco/Exception.h>

namespace sim {

ConnectionHandler::ConnectionHandler(const Poco::Net::StreamSocket& socket, Engine& engine,
                                     const Fault& fault)
    : TCPServerConnection(socket), engine(engine), fault(fault)
{
}

void ConnectionHandler::run()
{
    ClientSocket client(socket());
    Request request;
    std::string reply;
    if (fault.readsRequest) {
        request = ReadRequest(client);
        reply = fault.write(AnswerTo(request));
    }
    LogExchange(request.text, reply);
    try {
        fault.send(client, reply);
    } catch (const Poco::IOException&) {
        // The client left before the end of the reply: there is nothing left to do.
    }
}

Poco::JSON::Object ConnectionHandler::AnswerTo(const Request& request)
{
    return request.problem.empty() ? fault.answer(engine, *request.object)
                                   : MakeReply(ResultCode::BadRequest, request.problem);
}

void ConnectionHandler::LogExchange(const std::string& request, const std::string& reply) const
{
    const std::string name = fault.name;
    Log(Printable(request) + " -> " + Printable(reply) + (name.empty() ? "" : " [" + name + "]"));
}

ConnectionHandlerFactory::ConnectionHandlerFactory(Engine& engine, const Fault& fault)
    : engine(engine), fault(fault)
{
}

Poco::Net::TCPServerConnection*
ConnectionHandlerFactory::createConnection(const Poco::Net::StreamSocket& socket)
{
    return new ConnectionHandler(socket, engine, fault);
}

} // namespace sim
