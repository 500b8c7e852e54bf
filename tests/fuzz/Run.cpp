// One run of the tool inside the fuzzing process: its streams are caught, its engine is a list of
// replies, and whatever a run leaves behind in the process is put back before the next.

#include "tests/fuzz/Run.h"

#include "app/Quorlan.h"
#include "term/Styles.h"

#include <Poco/AutoPtr.h>
#include <Poco/Exception.h>

#include <iostream>
#include <sstream>

#include <unistd.h>

namespace {

Replies repliesLeft;
std::vector<std::string> requestsSeen;
bool onTerminal = false;

// A stream as a new process finds it, writing into a text.
class CaughtStream
{
public:
    explicit CaughtStream(std::ostream& caught) : stream(caught), original(stream.rdbuf())
    {
        stream.copyfmt(std::ios(nullptr));
        stream.rdbuf(written.rdbuf()); // clears the stream's state, too
    }
    ~CaughtStream() { stream.rdbuf(original); }
    CaughtStream(const CaughtStream&) = delete;
    CaughtStream& operator=(const CaughtStream&) = delete;

    std::string Text() const { return written.str(); }

private:
    std::ostream& stream;
    std::streambuf* original;
    std::ostringstream written;
};

// What the process entry does.
int Enter(const Words& words)
{
    std::vector<std::string> copies(words);
    std::vector<char*> argv;
    argv.reserve(copies.size());
    for (std::string& word : copies) {
        argv.push_back(word.data());
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

} // namespace

// Both definitions stand in for others: the linker takes the first it finds and asks neither the
// archive for engine/Connection.cpp nor the C library for its isatty.

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

Outcome Run(const Words& words, Replies replies)
{
    repliesLeft = std::move(replies);
    requestsSeen.clear();
    useColors = false;

    Outcome outcome;
    CaughtStream out(std::cout);
    CaughtStream err(std::cerr);
    CaughtStream log(std::clog);
    outcome.status = Enter(words);
    outcome.out = out.Text();
    outcome.err = err.Text() + log.Text();
    outcome.requests = requestsSeen;
    return outcome;
}

Outcome RunOnTerminal(Words words, const Replies& replies)
{
    words.insert(words.begin() + 1, "--colors");
    onTerminal = true;
    Outcome outcome = Run(words, replies);
    onTerminal = false;
    return outcome;
}
