#include "sim/Log.h"

#include "sim/StartError.h"

#include <Poco/Ascii.h>
#include <Poco/DateTimeFormatter.h>
#include <Poco/JSONString.h>
#include <Poco/Timestamp.h>
#include <Poco/UTF8Encoding.h>
#include <Poco/Util/Application.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iostream>

#include <fcntl.h>
#include <unistd.h>

namespace sim {

namespace {

const char* const programName = "vantrel-sim: ";

/// A JSON object with the time and, after it, other members.
std::string Entry(const std::string& members)
{
    const std::string time =
        Poco::DateTimeFormatter::format(Poco::Timestamp(), "%Y-%m-%dT%H:%M:%S.%iZ");
    return "{\"time\":" + JsonString(time) + "," + members + "}";
}

std::string JsonEntry(const Exchange& exchange)
{
    return Entry("\"connection\":" + std::to_string(exchange.connection) + ",\"request\":" +
                 JsonString(exchange.request) + ",\"reply\":" + JsonString(exchange.reply) +
                 ",\"fault\":" + (exchange.fault.empty() ? "null" : JsonString(exchange.fault)) +
                 ",\"carriedOut\":" + (exchange.carriedOut ? "true" : "false"));
}

std::string TextEntry(const Exchange& exchange)
{
    return programName + Printable(exchange.request) + " -> " + Printable(exchange.reply) +
           (exchange.fault.empty() ? "" : " [" + exchange.fault + "]");
}

/// The length of the UTF-8 character at the position, or 0 if there is none.
std::size_t CharacterLength(const std::string& text, std::size_t position)
{
    const auto* const bytes = reinterpret_cast<const unsigned char*>(text.data()) + position;
    const std::size_t length = *bytes < 0x80 ? 1 : *bytes < 0xe0 ? 2 : *bytes < 0xf0 ? 3 : 4;
    const bool isLegal = length <= text.size() - position &&
                         Poco::UTF8Encoding::isLegal(bytes, static_cast<int>(length));
    return isLegal ? length : 0;
}

} // namespace

Log::Log(LogFormat format) : format(format), descriptor(STDERR_FILENO) {}

Log::Log(const std::string& path, LogFormat format)
    : format(format),
      descriptor(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0666))
{
    if (descriptor < 0) {
        throw StartError(Poco::Util::Application::EXIT_CANTCREAT,
                         path + ": cannot be written: " + std::strerror(errno));
    }
}

Log::~Log()
{
    if (descriptor != STDERR_FILENO) {
        close(descriptor);
    }
}

void Log::Write(const std::string& message)
{
    WriteLine(format == LogFormat::Json ? Entry("\"message\":" + JsonString(message))
                                        : programName + message);
}

void Log::Write(const Exchange& exchange)
{
    WriteLine(format == LogFormat::Json ? JsonEntry(exchange) : TextEntry(exchange));
}

void Log::WriteLine(const std::string& line)
{
    const std::string text = line + "\n";
    const std::lock_guard<std::mutex> lock(mutex);
    // More than one write only where the system does not take a long line at once.
    for (std::size_t written = 0; written < text.size();) {
        const ssize_t count = write(descriptor, text.data() + written, text.size() - written);
        if (count < 0 && errno != EINTR) {
            return; // there is nobody left to tell
        }
        written += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    }
}

void Report(const std::string& problem)
{
    std::cerr << programName + problem + "\n" << std::flush;
}

std::string Printable(const std::string& text)
{
    constexpr std::size_t maxLength = 160;
    if (text.empty()) {
        return "(nothing)";
    }
    std::string line = text.substr(0, maxLength);
    std::replace_if(
        line.begin(), line.end(), [](char c) { return !Poco::Ascii::isPrintable(c); }, '?');
    return text.size() > maxLength ? line + "..." : line;
}

std::string JsonString(const std::string& text)
{
    const char* const replacementCharacter = "\xef\xbf\xbd";
    std::string legal;
    legal.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = CharacterLength(text, i);
        legal += length > 0 ? text.substr(i, length) : replacementCharacter;
        i += std::max<std::size_t>(length, 1);
    }
    return Poco::toJSON(legal);
}

} // namespace sim
