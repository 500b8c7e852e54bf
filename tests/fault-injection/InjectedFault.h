#pragma once

#include <string>

/// While one lives, calls of the C library fail in the programs that this process starts. The
/// preloaded libraries, SocketFaults.cpp and AllocationFaults.cpp, say which calls.
class InjectedFault
{
public:
    /// The nth call, from 1, and the times - 1 after it fail with the error number.
    static InjectedFault OfCall(const std::string& call, int nth, int error, int times = 1);
    /// The nth allocation fails.
    static InjectedFault OfAllocation(int nth);
    /// Each send moves at most limit bytes.
    static InjectedFault ShortSends(int limit);

    /// Nothing fails; what is set of a socket is kept for SocketSettings.
    static InjectedFault None();

    InjectedFault(const InjectedFault&) = delete;
    InjectedFault& operator=(const InjectedFault&) = delete;
    ~InjectedFault();

    /// Whether a program has got that far.
    bool Happened() const;
    /// What was set of every socket so far, in order, a line each: "wait" with the receive time-out
    /// in microseconds, "flags" for the flags with the blocking mode.
    std::string SocketSettings() const;

private:
    InjectedFault(const std::string& library, const std::string& call);

    std::string folder;
    std::string mark;
};

/// Runs the tool of this build from here on, whatever the environment names: these libraries can't
/// be preloaded into a tool for another processor.
void UseBuiltTool();

/// The same with the unsanitized build of the tool: AddressSanitizer has its own allocator.
void UseBuiltToolWithoutSanitizers();
