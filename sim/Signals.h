#pragma once

#include <csignal>
#include <initializer_list>

#include <sys/signalfd.h>

namespace sim {

/// Signals that are waited for like input.
class Signals
{
public:
    /// Blocks them. Threads inherit that, so call it before any is started. Throws
    /// std::system_error.
    explicit Signals(std::initializer_list<int> numbers);

    /// Can be read from when a signal has arrived.
    int Descriptor() const { return descriptor; }
    /// The next signal, once it has arrived.
    signalfd_siginfo Next() const;

    /// The signals that the caller of the program has blocked.
    const sigset_t& BlockedBefore() const { return blockedBefore; }

private:
    sigset_t blockedBefore;
    int descriptor; // until the end of the process
};

} // namespace sim
