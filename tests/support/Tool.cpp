#include "tests/support/Tool.h"

#include "tests/support/Descriptor.h"

#include <array>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <sstream>

#include <fcntl.h>
#include <sys/socket.h>
#include <termios.h>

namespace {

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

Stream MakeStream(bool isTerminal)
{
    return isTerminal ? MakeTerminal() : MakePipe();
}

} // namespace

Outcome RunTool(const std::vector<std::string>& arguments, Terminal terminal)
{
    return Run(CommandLine(ToolPath(), arguments),
               MakeStream(terminal == Terminal::Output || terminal == Terminal::Both),
               MakeStream(terminal == Terminal::Error || terminal == Terminal::Both));
}

Outcome RunToolAs(const std::string& name, const std::vector<std::string>& arguments)
{
    namespace fs = std::filesystem;
    std::string folder = fs::temp_directory_path() / "quorlan-test-XXXXXX";
    Require(mkdtemp(folder.data()) != nullptr, folder);
    const fs::path link = fs::path(folder) / name;
    fs::create_symlink(fs::absolute(ToolPath()), link);
    Outcome outcome = Run(CommandLine(link, arguments));
    fs::remove_all(folder);
    return outcome;
}

std::vector<std::string> WritesOfTool(const std::vector<std::string>& arguments)
{
    // A socket that keeps the borders between messages.
    std::array<int, 2> ends{};
    Require(socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) == 0, "socketpair");
    Stream out{Descriptor(ends[0]), Descriptor(ends[1])};
    Stream err = MakePipe();
    const pid_t process = Spawn(CommandLine(ToolPath(), arguments), out, err);
    out.writer.Close();

    std::vector<std::string> writes;
    for (std::string piece; ReadInto(out.reader, piece); piece.clear()) {
        writes.push_back(piece);
    }
    Outcome rest;
    Finish(process, out, err, rest);
    return writes;
}

Outcome RunShell(const std::string& script)
{
    const std::string tool = Environment("QUORLAN_LAUNCHER", "") + " " + ToolPath();
    return Run({"env", "QUORLAN=" + tool, "sh", "-c", script});
}

std::vector<std::string> Words(const std::string& line)
{
    std::istringstream stream(line);
    return {std::istream_iterator<std::string>(stream), {}};
}
