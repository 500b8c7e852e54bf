// The argument vector, program name included, each word ended by a NUL byte as the kernel shows it
// in /proc/PID/cmdline. The engine answers whatever it is asked with one reply that suits all.

#include "tests/fuzz/Oracle.h"
#include "tests/fuzz/Target.h"

#include <algorithm>
#include <cctype>
#include <optional>

namespace {

const std::string suitsAll = R"({"resultCode":0,"description":"done","debugModeEnabled":true,)"
                             R"("safeModeEnabled":false,"state":"running","version":"1",)"
                             R"("services":[],"modules":[]})";
const std::string statusQuery = R"({"command":"engine-status"})";

// The kernel never starts a program without a name; it may be empty.
Words SplitWords(const std::string& input)
{
    Words words;
    std::size_t begin = 0;
    do {
        const std::size_t end = std::min(input.find('\0', begin), input.size());
        words.push_back(input.substr(begin, end - begin));
        begin = end + 1;
    } while (begin < input.size());
    return words;
}

// What stands between head and tail, if text begins and ends with them.
std::optional<std::string> Between(const std::string& head, const std::string& text,
                                   const std::string& tail)
{
    if (text.size() < head.size() + tail.size() || text.compare(0, head.size(), head) != 0 ||
        text.compare(text.size() - tail.size(), tail.size(), tail) != 0) {
        return std::nullopt;
    }
    return text.substr(head.size(), text.size() - head.size() - tail.size());
}

bool IsModuleName(const std::string& text)
{
    return !text.empty() && text.size() <= 16 &&
           std::all_of(text.begin(), text.end(),
                       [](unsigned char c) { return c < 0x80 && std::isalnum(c) != 0; });
}

bool IsTrueOrFalse(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text == "true" || text == "false";
}

bool EndsAWord(const Words& words, const std::string& value)
{
    return std::any_of(words.begin() + 1, words.end(), [&value](const std::string& word) {
        return Between("", word, value).has_value();
    });
}

struct Sent
{
    int grouped = 0; // commands of the group of which one is allowed
    int updates = 0;
    int updateStatuses = 0;
    bool wellFormed = true;
};

// Whether the request is command's with an argument that was typed and is valid.
bool IsRequest(const std::string& request, const std::string& head, const std::string& tail,
               bool (*isValid)(const std::string&), const Words& words)
{
    const auto value = Between(head, request, tail);
    return value && isValid(*value) && EndsAWord(words, *value);
}

Sent Count(const Words& words, const std::vector<std::string>& requests)
{
    Sent sent;
    int queries = 0; // the next gated command's, or a command of the user's
    for (const std::string& request : requests) {
        const auto isModuleCommand = [&](const char* command) {
            return IsRequest(request, std::string(R"({"command":")") + command + R"(","module":")",
                             "\"}", IsModuleName, words);
        };
        const bool gated = isModuleCommand("start") || isModuleCommand("stop") ||
                           isModuleCommand("restart") || isModuleCommand("reconfigure") ||
                           isModuleCommand("monitor");
        if (request == statusQuery) {
            ++queries;
        } else if (request == R"({"command":"update"})") {
            ++sent.updates;
        } else if (request == R"({"command":"update-status"})") {
            ++sent.updateStatuses;
        } else if (gated) {
            sent.wellFormed = sent.wellFormed && queries == 1;
            queries = 0;
            ++sent.grouped;
        } else {
            sent.wellFormed =
                sent.wellFormed &&
                (request == R"({"command":"list"})" || isModuleCommand("status") ||
                 isModuleCommand("pid") ||
                 IsRequest(
                     request, R"({"boolean":")", R"(","command":"debug"})",
                     [](const std::string& text) { return IsTrueOrFalse(text); }, words));
            ++sent.grouped;
        }
    }
    sent.grouped += queries;
    return sent;
}

bool AsksForScreen(const std::string& word)
{
    return word == "-h" || word == "--help" || word == "-v" || word == "--version";
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const Words words = SplitWords(std::string(data, data + size));
    // More requests than words can't be: each word is an option at most, and an option two.
    const Outcome run = Run(words, Replies(2 * words.size(), suitsAll));
    const bool failed = run.status == 78 || run.status == 70;

    Require(run.status == 0 || run.status == 64 || failed, "the status is 0, 64, 70 or 78", run);
    Require(failed != run.err.empty(), "standard error tells of a failure and of nothing else",
            run);
    Require(words.size() > 1 || run.status != 0, "no argument is not a success", run);
    // 70: POCO reads the program's name as a configuration value, which may refer to itself.
    const bool told = run.out.rfind("No command specified\n", 0) == 0;
    Require(run.status == 64 ? told : !told || run.status == 70,
            "the missing command is told with its status", run);
    Require(words.size() > 1 || run.requests.empty(), "no argument sends nothing", run);
    Require(words.size() == 1 || (run.status != 64 && run.status != 70),
            "64 and 70 are the statuses of a run without arguments", run);
    Require(words.size() < 2 || !AsksForScreen(words[1]) || run.requests.empty(),
            "nothing is sent after a screen", run);
    // The help screen shows the program's name as it is.
    Require(words[0].find('\033') != std::string::npos || run.out.find('\033') == std::string::npos,
            "no escape byte in a pipe", run);

    const Sent sent = Count(words, run.requests);
    Require(sent.wellFormed, "a request is one of a command's, gated ones after the query", run);
    Require(sent.grouped <= 1 && sent.updates <= 1 && sent.updateStatuses <= 1,
            "a command is sent once, and one of its group", run);
    return 0;
}
