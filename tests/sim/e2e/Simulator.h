#pragma once

#include "tests/support/Process.h"

#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <vector>

/// The real simulator in a process of its own.
class Simulator
{
public:
    /// Starts it and waits until it listens, or has ended because it does not start.
    explicit Simulator(const std::vector<std::string>& arguments = {},
                       const std::string& input = "/dev/null");
    /// Ends it, unless the test did, and expects exit status 0.
    ~Simulator();
    Simulator(const Simulator&) = delete;
    Simulator& operator=(const Simulator&) = delete;

    /// Waits until the text is in the log. The log is read only here and in End(), so that between
    /// the two a test must not cause more lines than fit into a pipe (64 KiB).
    void AwaitLog(const std::string& text);

    /// Sends the signal, unless the simulator has already ended, and waits for its end.
    Outcome End(int signal = SIGTERM);

private:
    Stream out = MakePipe();
    Stream err = MakePipe();
    pid_t process = 0; // 0 after End
    Outcome outcome;
};

/// Names a test by the signal that is its parameter.
std::string NameOfSignal(const testing::TestParamInfo<int>& info);

/// A request that leaves the default state as it is, and its reply.
inline const std::string pidRequest = R"({"command":"pid","module":"pump1"})";
inline const std::string pidReply = R"({"description":"1004","resultCode":0})";

/// The line of the log on one connection, with both texts as the log shows them.
std::string LogLine(const std::string& request, const std::string& reply);

/// The outcome of a simulator that served, with this log, and was ended by a signal.
Outcome Served(const std::string& log);

/// The outcome of one that does not start.
Outcome Refused(int status, const std::string& line);

/// The outcome of a run of the tool whose report is the description of the reply.
Outcome Done(const std::string& description);
