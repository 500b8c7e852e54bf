#include "sim/ConnectionHandler.h"

#include "sim/ClientSocket.h"
#include "sim/Log.h"
#include "sim/Reply.h"

#include <Poco/Exception.h>

#include <string>
#include <thread>

namespace sim {

namespace {

void LogExchange(const std::string& request, const std::string& reply, const std::string& fault)
{
    Log(Printable(request) + " -> " + Printable(reply) + (fault.empty() ? "" : " [" + fault + "]"));
}

} // namespace

ConnectionHandler::ConnectionHandler(const Poco::Net::StreamSocket& socket, Service& service)
    : TCPServerConnection(socket), service(service)
{
}

void ConnectionHandler::run()
{
    ClientSocket client(socket());
    Request request;
    std::string reply;
    const Fault* fault = service.faults.WithoutRequest();
    if (fault == nullptr) {
        request = ReadRequest(client);
        fault = &service.faults.For(request);
    }
    if (fault->reach >= Reach::Read) {
        reply = fault->write(AnswerTo(request, *fault));
    }
    LogExchange(request.text, reply, fault->name);
    if (!reply.empty()) {
        std::this_thread::sleep_for(service.delay);
    }
    try {
        fault->send(client, reply);
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
    return new ConnectionHandler(socket, service);
}

} // namespace sim
