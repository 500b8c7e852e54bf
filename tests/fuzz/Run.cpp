// One run of the tool inside the fuzzing process. Its streams are captured, its engine is a list of
// replies, and what a run changes in the process is reset before the next.

#include "tests/fuzz/Run.h"

#include "app/Quorlan.h"
#include "term/Styles.h"

#include <Poco/AutoPtr.h>
#include <Poco/Exception.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <sstream>

#include <unistd.h>

namespace {

Replies repliesLeft;
std::vector<std::string> requestsSeen;
bool onTerminal = false;

// A standard stream in the state of a new process, writing into a string.
class CapturedStream
{
public:
    explicit CapturedStream(std::ostream& stream) : stream(stream), original(stream.rdbuf())
    {
        stream.copyfmt(std::ios(nullptr));
        stream.rdbuf(written.rdbuf()); // clears the stream's state, too
    }
    ~CapturedStream() { stream.rdbuf(original); }
    CapturedStream(const CapturedStream&) = delete;
    CapturedStream& operator=(const CapturedStream&) = delete;

    std::string Text() const { return written.str(); }

private:
    std::ostream& stream;
    std::streambuf* original;
    std::ostringstream written;
};

// What main() does.
int Enter(Arguments arguments)
{
    std::vector<char*> argv;
    argv.reserve(arguments.size());
    for (std::string& argument : arguments) {
        argv.push_back(argument.data());
    }
    Poco::AutoPtr<Quorlan> quorlan(new Quorlan);
    try {
        quorlan->init(static_cast<int>(argv.size()), argv.data());
    } catch (const Poco::Exception& exception) {
        quorlan->logger().log(exception);
        return Quorlan::EXIT_CONFIG;
    }
    return quorlan->run();
}

void Print(const char* title, const RunResult& run)
{
    std::fprintf(stderr, "--- %s: status %d\n", title, run.status);
    for (const std::string& request : run.requests) {
        std::fprintf(stderr, "request: %s\n", request.c_str());
    }
    std::fprintf(stderr, "standard output: %s\nstandard error: %s\n", run.out.c_str(),
                 run.err.c_str());
}

} // namespace

// Both definitions replace others. The linker takes the first it finds: it uses neither
// engine/Connection.cpp nor the C library's isatty.

bool Quorlan::SendRequest(const Poco::JSON::Object& request, std::string& reply)
{
    reply.clear();
    std::ostringstream sent;
    request.stringify(sent, 0, -1);
    requestsSeen.push_back(sent.str());
    if (repliesLeft.empty()) {
        return false;
    }
    reply = repliesLeft.front();
    repliesLeft.pop_front();
    return true;
}

extern "C" int isatty(int descriptor) noexcept
{
    return onTerminal && descriptor == STDOUT_FILENO ? 1 : 0;
}

RunResult Run(const Arguments& arguments, Replies replies)
{
    repliesLeft = std::move(replies);
    requestsSeen.clear();
    useColors = false;

    const CapturedStream out(std::cout);
    const CapturedStream err(std::cerr);
    const CapturedStream log(std::clog);
    const int status = Enter(arguments);
    return {status, out.Text(), err.Text() + log.Text(), requestsSeen};
}

RunResult RunOnTerminal(Arguments arguments, const Replies& replies)
{
    arguments.insert(arguments.begin() + 1, "--colors");
    onTerminal = true;
    RunResult result = Run(arguments, replies);
    onTerminal = false;
    return result;
}

void Require(bool holds, const char* rule, const RunResult& run)
{
    if (!holds) {
        std::fprintf(stderr, "broken: %s\n", rule);
        Print("run", run);
        std::abort();
    }
}

void RequireSame(const char* title, const RunResult& actual, const RunResult& expected)
{
    if (actual.status != expected.status || actual.out != expected.out ||
        actual.err != expected.err || actual.requests != expected.requests) {
        Print("expected", expected);
        Print(title, actual);
        std::abort();
    }
}
