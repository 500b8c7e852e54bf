// Command lines: the program's name and the arguments, each ended by a NUL byte as in
// /proc/PID/cmdline. The engine gives every request the same reply, with which all commands
// succeed.

#include "tests/fuzz/Run.h"

#include <Poco/RegularExpression.h>

#include <algorithm>
#include <cstdint>

namespace {

const std::string replyToAll = R"({"resultCode":0,"description":"done","debugModeEnabled":true,)"
                               R"("safeModeEnabled":false,"state":"running","version":"1",)"
                               R"("services":[],"modules":[]})";
const std::string statusQuery = R"({"command":"engine-status"})";

// The requests with an argument, which is captured.
const Poco::RegularExpression
    gatedRequest(R"re(\A{"command":"(?:start|stop|restart|reconfigure|monitor)",)re"
                 R"re("module":"([0-9A-Za-z]{1,16})"}\z)re");
const Poco::RegularExpression
    queryRequest(R"re(\A{"command":"(?:status|pid)","module":"([0-9A-Za-z]{1,16})"}\z)re");
const Poco::RegularExpression
    debugRequest(R"re(\A{"boolean":"((?i)true|false)","command":"debug"}\z)re");

// The kernel never starts a program without a name; it may be empty.
Arguments SplitArguments(const std::string& input)
{
    Arguments arguments;
    std::size_t begin = 0;
    do {
        const std::size_t end = std::min(input.find('\0', begin), input.size());
        arguments.push_back(input.substr(begin, end - begin));
        begin = end + 1;
    } while (begin < input.size());
    return arguments;
}

bool EndsWith(const std::string& text, const std::string& tail)
{
    return text.size() >= tail.size() &&
           text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

// Whether the request has the pattern's form and an argument that was typed.
bool Matches(const Poco::RegularExpression& pattern, const std::string& request,
             const Arguments& arguments)
{
    std::vector<std::string> captured;
    return pattern.split(request, captured) != 0 &&
           std::any_of(arguments.begin() + 1, arguments.end(),
                       [&captured](const std::string& argument) {
                           return EndsWith(argument, captured.back());
                       });
}

struct Sent
{
    int grouped = 0; // commands of the group of which one is allowed
    int updates = 0;
    int updateStatuses = 0;
    bool wellFormed = true;
};

Sent Count(const Arguments& arguments, const std::vector<std::string>& requests)
{
    Sent sent;
    int queries = 0; // before a gated command, or of --engine-status
    for (const std::string& request : requests) {
        if (request == statusQuery) {
            ++queries;
        } else if (request == R"({"command":"update"})") {
            ++sent.updates;
        } else if (request == R"({"command":"update-status"})") {
            ++sent.updateStatuses;
        } else if (Matches(gatedRequest, request, arguments)) {
            sent.wellFormed = sent.wellFormed && queries == 1;
            queries = 0;
            ++sent.grouped;
        } else {
            sent.wellFormed = sent.wellFormed && (request == R"({"command":"list"})" ||
                                                  Matches(queryRequest, request, arguments) ||
                                                  Matches(debugRequest, request, arguments));
            ++sent.grouped;
        }
    }
    sent.grouped += queries;
    return sent;
}

bool AsksForScreen(const std::string& argument)
{
    return argument == "-h" || argument == "--help" || argument == "-v" || argument == "--version";
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const Arguments arguments = SplitArguments(std::string(data, data + size));
    const bool bare = arguments.size() == 1;
    // Enough for all requests: an argument is one option at most, and an option sends two at most.
    const RunResult run = Run(arguments, Replies(2 * arguments.size(), replyToAll));
    const bool failed = run.status == 78 || run.status == 70;
    const bool noCommand = run.out.rfind("No command specified\n", 0) == 0;

    // 70: POCO reads the program's name as a configuration value, which may refer to itself.
    Require(run.status == 0 || run.status == 64 || failed, "the status is 0, 64, 70 or 78", run);
    Require(bare ? run.status != 0 : run.status != 64 && run.status != 70,
            "without arguments the status is never 0, with arguments never 64 or 70", run);
    Require(failed != run.err.empty(), "standard error has text if the run failed", run);
    Require(run.status == 64 ? noCommand : !noCommand || run.status == 70,
            "the output says that the command is missing if the status does", run);
    Require(!bare || run.requests.empty(), "without arguments nothing is sent", run);
    Require(bare || !AsksForScreen(arguments[1]) || run.requests.empty(),
            "nothing is sent after a screen", run);
    // The help screen shows the program's name as it is.
    Require(arguments[0].find('\033') != std::string::npos ||
                run.out.find('\033') == std::string::npos,
            "no escape byte in a pipe", run);

    const Sent sent = Count(arguments, run.requests);
    Require(sent.wellFormed, "each request is a command's, a gated one after its query", run);
    Require(sent.grouped <= 1 && sent.updates <= 1 && sent.updateStatuses <= 1,
            "a command is sent once, and one of its group", run);
    return 0;
}
