#include "sim/Connection.h"

#include "sim/Log.h"
#include "sim/Reply.h"

#include <Poco/Exception.h>

namespace sim {

Connection::Connection(const Poco::Net::StreamSocket& socket, Engine& simulated,
                       const Fault& treatment, OpenConnections& openConnections)
    : TCPServerConnection(socket), engine(simulated), fault(treatment), open(openConnections)
{
}

void Connection::run()
{
    Channel channel(socket(), open);
    Request request;
    std::string reply;
    if (fault.readsRequest) {
        request = ReadRequest(channel);
        reply = fault.write(AnswerTo(request));
    }
    LogExchange(request.text, reply);
    try {
        fault.send(channel, reply);
    } catch (const Poco::IOException&) {
        // The client did not wait for the end of the reply. That is its own affair.
    }
}

Poco::JSON::Object Connection::AnswerTo(const Request& request)
{
    return request.problem.empty() ? fault.answer(engine, *request.object)
                                   : MakeReply(ResultCode::BadRequest, request.problem);
}

void Connection::LogExchange(const std::string& request, const std::string& reply) const
{
    const std::string name = fault.name;
    Log(Printable(request) + " -> " + Printable(reply) + (name.empty() ? "" : " [" + name + "]"));
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
