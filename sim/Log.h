#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>

namespace sim {

/// What was received and sent over one connection.
struct Exchange
{
    std::uint64_t connection = 0; ///< The how manyth of this run.
    std::string request;
    std::string reply; ///< Also if the client does not wait for all of it.
    std::string fault; ///< Empty without one.
    bool carriedOut = false;
};

enum class LogFormat { Text, Json };

/// The log of a run. Many threads may write to it at once; each line is written whole.
class Log
{
public:
    /// A log on standard error.
    explicit Log(LogFormat format = LogFormat::Text);
    /// A log in a file, which is emptied. Throws StartError with EXIT_CANTCREAT.
    Log(const std::string& path, LogFormat format);
    ~Log();
    Log(const Log&) = delete;
    Log& operator=(const Log&) = delete;

    void Write(const std::string& message);
    void Write(const Exchange& exchange);

private:
    void WriteLine(const std::string& line);

    LogFormat format;
    int descriptor;
    std::mutex mutex; // held while a line is written
};

/// Writes one line to standard error, after the program's name: why the simulator cannot start.
void Report(const std::string& problem);

/// The text as a part of one line. Clients may send anything, so a long text is cut off and every
/// byte that is not a printable ASCII character is replaced. An empty text is "(nothing)".
std::string Printable(const std::string& text);

/// The text as a JSON string. Bytes that are not UTF-8 are replaced.
std::string JsonString(const std::string& text);

} // namespace sim
