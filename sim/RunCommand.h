#pragma once

#include <csignal>
#include <optional>
#include <string>
#include <vector>

#include <sys/signalfd.h>
#include <sys/types.h>

namespace sim {

/// The command that the simulator was started for, as a process of its own.
class RunCommand
{
public:
    /// Starts it with these signals blocked. Throws StartError with the status that a shell has for
    /// a command that cannot be run, 127 or 126.
    RunCommand(const std::vector<std::string>& words, const sigset_t& blockedSignals);

    /// Sends it a signal that was sent to the simulator.
    void PassOn(const signalfd_siginfo& signal) const;

    /// How the simulator is to end: none while the command runs, then its exit status or, if a
    /// signal ended it, 128 more than the signal's number.
    std::optional<int> ExitStatus() const;

private:
    pid_t process = 0;
};

} // namespace sim
