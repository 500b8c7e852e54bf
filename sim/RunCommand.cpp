#include "sim/RunCommand.h"

#include "sim/StartError.h"

#include <cerrno>
#include <cstring>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace sim {

namespace {

constexpr int notExecutable = 126;
constexpr int notFound = 127;

/// Returns an error number, or 0 once the command runs.
int Spawn(pid_t& process, std::vector<std::string> words, const sigset_t& blockedSignals)
{
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    posix_spawnattr_setsigmask(&attributes, &blockedSignals);
    const int error =
        posix_spawnp(&process, arguments[0], nullptr, &attributes, arguments.data(), environ);
    posix_spawnattr_destroy(&attributes);
    return error;
}

} // namespace

RunCommand::RunCommand(const std::vector<std::string>& words, const sigset_t& blockedSignals)
{
    // Where the caller ignores the ends of its children, there would be none to wait for.
    std::signal(SIGCHLD, SIG_DFL);
    const int error = Spawn(process, words, blockedSignals);
    if (error != 0) {
        throw StartError(error == ENOENT ? notFound : notExecutable,
                         "cannot run " + words[0] + ": " + std::strerror(error));
    }
}

void RunCommand::PassOn(const signalfd_siginfo& signal) const
{
    // What the terminal sends, such as for Ctrl-C, it sends to the command, too.
    if (signal.ssi_code != SI_KERNEL) {
        kill(process, static_cast<int>(signal.ssi_signo));
    }
}

std::optional<int> RunCommand::ExitStatus() const
{
    constexpr int signaled = 128;
    int status = 0;
    if (waitpid(process, &status, WNOHANG) != process) {
        return std::nullopt;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : signaled + WTERMSIG(status);
}

} // namespace sim
