#pragma once

#include <string>

/// While one lives, the programs that this process starts have calls of the C library fail. The
/// preloaded libraries, SocketFaults.cpp and AllocationFaults.cpp, say which calls.
class InjectedFault
{
public:
    /// The nth call, from 1, and the times - 1 after it fail with the error number.
    static InjectedFault OfCall(const std::string& call, int nth, int error, int times = 1);
    /// The nth allocation fails.
    static InjectedFault OfAllocation(int nth);
    /// Each send or recv moves at most limit bytes.
    static InjectedFault ShortTransfers(const std::string& call, int limit);

    /// Nothing fails; the receive time-outs that are set are kept for ReceiveTimeouts.
    static InjectedFault None();

    InjectedFault(const InjectedFault&) = delete;
    InjectedFault& operator=(const InjectedFault&) = delete;
    ~InjectedFault();

    /// Whether a program has got that far.
    bool Happened() const;
    /// The receive time-out of every socket so far, in microseconds, a line each.
    std::string ReceiveTimeouts() const;

private:
    InjectedFault(const std::string& library, const std::string& call);

    std::string folder;
    std::string mark;
};

/// Whether the tool is one that these libraries can be preloaded into: the environment may name a
/// tool for another processor.
bool CanInjectFaults();

/// Runs the unsanitized build of the tool from here on. AddressSanitizer has its own allocator.
void UseToolWithoutSanitizers();
