#include "tests/support/Tool.h"

#include "tests/support/Descriptor.h"

#include <array>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <ostream>
#include <sstream>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <termios.h>

namespace {

/// A stream of the tool: the end it writes to and the end the test reads from.
struct Stream
{
    Descriptor reader;
    Descriptor writer;
};

Stream MakePipe()
{
    std::array<int, 2> ends{};
    Require(pipe2(ends.data(), O_CLOEXEC) == 0, "pipe");
    return {Descriptor(ends[0]), Descriptor(ends[1])};
}

Stream MakeTerminal()
{
    Stream terminal;
    terminal.reader = Descriptor(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
    Require(grantpt(terminal.reader.Get()) == 0 && unlockpt(terminal.reader.Get()) == 0, "pty");
    std::array<char, 64> name{};
    Require(ptsname_r(terminal.reader.Get(), name.data(), name.size()) == 0, "ptsname");
    terminal.writer = Descriptor(open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    // Raw, so that the bytes read are the bytes written.
    termios attributes{};
    Require(tcgetattr(terminal.writer.Get(), &attributes) == 0, "tcgetattr");
    cfmakeraw(&attributes);
    Require(tcsetattr(terminal.writer.Get(), TCSANOW, &attributes) == 0, "tcsetattr");
    return terminal;
}

std::string Environment(const char* name, const char* fallback)
{
    const char* const value = std::getenv(name);
    return value != nullptr ? value : fallback;
}

std::string ToolPath()
{
    return Environment("QUORLAN_BINARY", QUORLAN_BUILT_BINARY);
}

std::vector<std::string> CommandLine(const std::string& tool,
                                     const std::vector<std::string>& arguments)
{
    std::vector<std::string> words = Words(Environment("QUORLAN_LAUNCHER", ""));
    words.push_back(tool);
    words.insert(words.end(), arguments.begin(), arguments.end());
    return words;
}

pid_t Spawn(std::vector<std::string> words, const Stream& out, const Stream& err)
{
    std::vector<char*> argv;
    argv.reserve(words.size() + 1);
    for (std::string& word : words) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, out.writer.Get(), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, err.writer.Get(), STDERR_FILENO);
    pid_t process = 0;
    errno = posix_spawnp(&process, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    Require(errno == 0, words[0]);
    return process;
}

/// False at the end of the stream; a terminal whose last writer has gone reports an error there.
bool ReadInto(const Descriptor& reader, std::string& text)
{
    std::array<char, 65536> buffer{};
    const ssize_t count = read(reader.Get(), buffer.data(), buffer.size());
    if (count <= 0) {
        return false;
    }
    text.append(buffer.data(), static_cast<std::size_t>(count));
    return true;
}

void Drain(const Stream& out, const Stream& err, Outcome& outcome)
{
    std::array<pollfd, 2> events{{{out.reader.Get(), POLLIN, 0}, {err.reader.Get(), POLLIN, 0}}};
    while (events[0].fd >= 0 || events[1].fd >= 0) {
        Require(poll(events.data(), events.size(), -1) > 0, "poll");
        if (events[0].revents != 0 && !ReadInto(out.reader, outcome.out)) {
            events[0].fd = -1;
        }
        if (events[1].revents != 0 && !ReadInto(err.reader, outcome.err)) {
            events[1].fd = -1;
        }
    }
}

int Wait(pid_t process)
{
    int status = 0;
    Require(waitpid(process, &status, 0) == process, "waitpid");
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

Outcome Run(std::vector<std::string> commandLine, Terminal terminal)
{
    const bool outIsTerminal = terminal == Terminal::Output || terminal == Terminal::Both;
    const bool errIsTerminal = terminal == Terminal::Error || terminal == Terminal::Both;
    Stream out = outIsTerminal ? MakeTerminal() : MakePipe();
    Stream err = errIsTerminal ? MakeTerminal() : MakePipe();
    const pid_t process = Spawn(std::move(commandLine), out, err);
    out.writer.Close();
    err.writer.Close();

    Outcome outcome;
    Drain(out, err, outcome);
    outcome.status = Wait(process);
    return outcome;
}

} // namespace

bool Outcome::operator==(const Outcome& other) const
{
    return status == other.status && out == other.out && err == other.err;
}

void PrintTo(const Outcome& outcome, std::ostream* stream)
{
    // Blanks at the end of a line matter in the reports, so each line shows its end.
    const auto show = [stream](const char* name, const std::string& text) {
        *stream << "\n  " << name << ": ";
        for (const char c : text) {
            if (c == '\n') {
                *stream << "$\n          ";
            } else if (c == '\033') {
                *stream << "\\033";
            } else {
                *stream << c;
            }
        }
    };
    *stream << "status " << outcome.status;
    show("stdout", outcome.out);
    show("stderr", outcome.err);
}

Outcome RunTool(const std::vector<std::string>& arguments, Terminal terminal)
{
    return Run(CommandLine(ToolPath(), arguments), terminal);
}

Outcome RunToolAs(const std::string& name, const std::vector<std::string>& arguments)
{
    namespace fs = std::filesystem;
    std::string folder = fs::temp_directory_path() / "quorlan-test-XXXXXX";
    Require(mkdtemp(folder.data()) != nullptr, folder);
    const fs::path link = fs::path(folder) / name;
    fs::create_symlink(fs::absolute(ToolPath()), link);
    Outcome outcome = Run(CommandLine(link, arguments), Terminal::None);
    fs::remove_all(folder);
    return outcome;
}

std::vector<std::string> WritesOfTool(const std::vector<std::string>& arguments)
{
    // A socket that keeps the borders between messages.
    std::array<int, 2> ends{};
    Require(socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) == 0, "socketpair");
    Stream out{Descriptor(ends[0]), Descriptor(ends[1])};
    const Stream err = MakePipe();
    const pid_t process = Spawn(CommandLine(ToolPath(), arguments), out, err);
    out.writer.Close();

    std::vector<std::string> writes;
    for (std::string piece; ReadInto(out.reader, piece); piece.clear()) {
        writes.push_back(piece);
    }
    Wait(process);
    return writes;
}

Outcome RunShell(const std::string& script)
{
    const std::string tool = Environment("QUORLAN_LAUNCHER", "") + " " + ToolPath();
    return Run({"env", "QUORLAN=" + tool, "sh", "-c", script}, Terminal::None);
}

std::vector<std::string> Words(const std::string& line)
{
    std::istringstream stream(line);
    return {std::istream_iterator<std::string>(stream), {}};
}
