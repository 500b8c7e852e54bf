#include "sim/ConnectionHandler.h"

#include "sim/ClientSocket.h"
#include "sim/Reply.h"

#include <Poco/Exception.h>

#include <thread>

namespace sim {

ConnectionHandler::ConnectionHandler(const Poco::Net::StreamSocket& socket, Service& service,
                                     std::uint64_t number)
    : TCPServerConnection(socket), service(service), number(number)
{
}

void ConnectionHandler::run()
{
    ClientSocket client(socket());
    Exchange exchange;
    exchange.connection = number;
    const Fault* fault = service.faults.WithoutRequest();
    Request request;
    if (fault == nullptr) {
        request = ReadRequest(client);
        fault = &service.faults.For(request);
    }
    exchange.request = request.text;
    exchange.fault = fault->name;
    if (fault->reach >= Reach::Read) {
        const Poco::JSON::Object answer = AnswerTo(request, *fault);
        exchange.carriedOut = answer.getValue<int>("resultCode") == 0;
        exchange.reply = fault->write(answer);
    }
    service.log.Write(exchange);
    if (!exchange.reply.empty()) {
        std::this_thread::sleep_for(service.delay);
    }
    try {
        fault->send(client, exchange.reply);
    } catch (const Poco::IOException&) {
        // The client left before the end of the reply: there is nothing left to do.
    }
}

Poco::JSON::Object ConnectionHandler::AnswerTo(const Request& request, const Fault& fault)
{
    return request.problem.empty() ? fault.answer(service.engine, *request.object)
                                   : MakeReply(ResultCode::BadRequest, request.problem);
}

ConnectionHandlerFactory::ConnectionHandlerFactory(Service& service) : service(service) {}

Poco::Net::TCPServerConnection*
ConnectionHandlerFactory::createConnection(const Poco::Net::StreamSocket& socket)
{
    return new ConnectionHandler(socket, service, ++connections);
}

} // namespace sim
