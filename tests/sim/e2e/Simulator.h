#pragma once

#include "tests/support/Process.h"

#include <csignal>
#include <string>
#include <vector>

/// The real simulator in a process of its own.
class Simulator
{
public:
    /// Starts it and waits until it listens, or has ended because it does not start.
    explicit Simulator(const std::vector<std::string>& arguments = {});
    /// Ends it, unless the test did; it has to end well.
    ~Simulator();
    Simulator(const Simulator&) = delete;
    Simulator& operator=(const Simulator&) = delete;

    /// Waits until the text stands in the log. What was logged is read here and in End() alone, so
    /// between the two a test must not make more lines than fit into a pipe (64 KiB).
    void AwaitLog(const std::string& text);

    /// Sends the signal, unless the simulator has ended by itself, and waits for the end.
    Outcome End(int signal = SIGTERM);

private:
    Stream out = MakePipe();
    Stream err = MakePipe();
    pid_t process = 0; // 0 after End
    Outcome outcome;
};

/// The line of the log on one connection; what is not fit for a line as the log shows it.
std::string LogLine(const std::string& request, const std::string& reply);

/// What a simulator that served, ended by a signal, leaves behind after this log.
Outcome Served(const std::string& log);

/// What one that does not start leaves behind.
Outcome Refused(int status, const std::string& line);
