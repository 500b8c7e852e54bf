#include "tests/support/Process.h"

#include <array>
#include <ostream>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

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

} // namespace

bool Outcome::operator==(const Outcome& other) const
{
    return status == other.status && out == other.out && err == other.err;
}

void PrintTo(const Outcome& outcome, std::ostream* stream)
{
    // Spaces at the end of a line matter in the reports, so each line shows its end.
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

Stream MakePipe()
{
    std::array<int, 2> ends{};
    Require(pipe2(ends.data(), O_CLOEXEC) == 0, "pipe");
    return {Descriptor(ends[0]), Descriptor(ends[1])};
}

pid_t Spawn(std::vector<std::string> commandLine, const Stream& out, const Stream& err)
{
    std::vector<char*> argv;
    argv.reserve(commandLine.size() + 1);
    for (std::string& word : commandLine) {
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
    Require(errno == 0, commandLine[0]);
    return process;
}

bool ReadInto(const Descriptor& reader, std::string& text)
{
    std::array<char, 65536> buffer{};
    const ssize_t count = read(reader.Get(), buffer.data(), buffer.size());
    // A terminal whose last writer has gone reports an error where a pipe reports its end.
    if (count <= 0) {
        return false;
    }
    text.append(buffer.data(), static_cast<std::size_t>(count));
    return true;
}

void Finish(pid_t process, Stream& out, Stream& err, Outcome& outcome)
{
    out.writer.Close();
    err.writer.Close();
    Drain(out, err, outcome);
    outcome.status = Wait(process);
}

Outcome Run(std::vector<std::string> commandLine, Stream out, Stream err)
{
    const pid_t process = Spawn(std::move(commandLine), out, err);
    Outcome outcome;
    Finish(process, out, err, outcome);
    return outcome;
}
