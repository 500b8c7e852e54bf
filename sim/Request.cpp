#include "sim/Request.h"

#include "sim/RequestFrame.h"

#include <Poco/Exception.h>
#include <Poco/JSON/Parser.h>

namespace sim {

namespace {

constexpr std::chrono::seconds timeForRequest(5);
constexpr std::size_t bufferSize = 4096;

/// Takes bytes until the frame is other than incomplete, and says what it is then.
RequestFrame::Progress Fill(RequestFrame& frame, Channel& channel)
{
    const Deadline deadline = std::chrono::steady_clock::now() + timeForRequest;
    char buffer[bufferSize];
    auto progress = RequestFrame::Progress::incomplete;
    while (progress == RequestFrame::Progress::incomplete) {
        const auto count = channel.Receive(buffer, bufferSize, deadline);
        if (!count) {
            throw BadRequest("The request was not complete within 5 seconds");
        }
        if (*count == 0) {
            throw BadRequest("The request ended before its closing brace");
        }
        progress = frame.Take(buffer, *count);
    }
    return progress;
}

} // namespace

void ReadRequest(Channel& channel, std::string& text)
{
    RequestFrame frame;
    try {
        switch (Fill(frame, channel)) {
        case RequestFrame::Progress::notAnObject:
            throw BadRequest("The request is not a JSON object");
        case RequestFrame::Progress::tooLong:
            throw BadRequest("The request is longer than 64 KiB");
        default:
            text = frame.Text();
        }
    } catch (const BadRequest&) {
        text = frame.Text();
        throw;
    }
}

Poco::JSON::Object::Ptr ParseRequest(const std::string& text)
{
    try {
        return Poco::JSON::Parser().parse(text).extract<Poco::JSON::Object::Ptr>();
    } catch (const Poco::Exception& exception) {
        throw BadRequest("The request is not valid JSON: " + exception.displayText());
    }
}

} // namespace sim
