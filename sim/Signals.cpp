#include "sim/Signals.h"

#include <cerrno>
#include <system_error>

#include <unistd.h>

namespace sim {

Signals::Signals(std::initializer_list<int> numbers) : blockedBefore()
{
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : numbers) {
        sigaddset(&signals, number);
    }
    sigprocmask(SIG_BLOCK, &signals, &blockedBefore);
    sigdelset(&blockedBefore, SIGPIPE); // this one was POCO, before main()
    descriptor = signalfd(-1, &signals, SFD_CLOEXEC);
    if (descriptor < 0) {
        throw std::system_error(errno, std::generic_category(), "signalfd");
    }
}

signalfd_siginfo Signals::Next() const
{
    signalfd_siginfo signal{};
    if (read(descriptor, &signal, sizeof signal) < 0) {
        throw std::system_error(errno, std::generic_category(), "signalfd");
    }
    return signal;
}

} // namespace sim
