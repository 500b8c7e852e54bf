// Checks replies and turns the outcome of an exchange into the exit status.

#include "app/Quorlan.h"

#include <Poco/Dynamic/Var.h>
#include <Poco/Exception.h>
#include <Poco/JSON/Parser.h>

#include <iostream>

void Quorlan::ExecuteRequest(const Poco::JSON::Object& request, const ReplyHandler& handler)
{
    std::string reply;
    if (!SendRequest(request, reply)) {
        exitCode = EXIT_UNAVAILABLE;
        return;
    }
    ReadReply(reply, [this, &handler](const Poco::JSON::Object::Ptr& object) {
        handler(object);
        const int resultCode = object->getValue<int>("resultCode");
        if (resultCode != 0) {
            exitCode = resultCode;
        }
    });
}

void Quorlan::ReadReply(const std::string& reply, const ReplyHandler& handler)
{
    try {
        Poco::JSON::Parser parser;
        // An exact extraction: a reply that is not an object is refused, not converted.
        handler(parser.parse(reply).extract<Poco::JSON::Object::Ptr>());
    } catch (const Poco::Exception& exception) {
        std::cerr << "Failed to parse reply due to " << exception.displayText() << std::endl;
        exitCode = EXIT_PROTOCOL;
    }
}
