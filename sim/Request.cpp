#include "sim/Request.h"

#include "sim/Log.h"
#include "sim/RequestFrame.h"

#include <Poco/Exception.h>
#include <Poco/JSON/Parser.h>

namespace sim {

namespace {

constexpr std::chrono::seconds timeForRequest(5);

/// Reads until the frame holds one object. Returns what is wrong with the request, or "".
std::string Fill(RequestFrame& frame, ClientSocket& client)
{
    const Deadline deadline = std::chrono::steady_clock::now() + timeForRequest;
    char buffer[4096];
    for (;;) {
        const auto count = client.Receive(buffer, sizeof buffer, deadline);
        if (!count) {
            return "The request was not complete within 5 seconds";
        }
        if (*count == 0) {
            return "The request ended before its closing brace";
        }
        switch (frame.Take(buffer, *count)) {
        case RequestFrame::Progress::Complete:
            return "";
        case RequestFrame::Progress::NotAnObject:
            return "The request is not a JSON object";
        case RequestFrame::Progress::TooLong:
            return "The request is longer than 64 KiB";
        case RequestFrame::Progress::Incomplete:
            break;
        }
    }
}

void Parse(Request& request)
{
    try {
        const Poco::Dynamic::Var json = Poco::JSON::Parser().parse(request.text);
        request.object = json.extract<Poco::JSON::Object::Ptr>();
    } catch (const Poco::Exception& exception) {
        // POCO's message may quote a byte of the request that is no character by itself.
        request.problem = "The request is not valid JSON: " + Printable(exception.message());
    }
}

} // namespace

Request ReadRequest(ClientSocket& client)
{
    RequestFrame frame;
    Request request;
    try {
        request.problem = Fill(frame, client);
    } catch (const Poco::IOException&) {
        request.problem = "The connection broke before the request was complete";
    }
    request.text = frame.Text();
    if (request.problem.empty()) {
        Parse(request);
    }
    return request;
}

} // namespace sim
