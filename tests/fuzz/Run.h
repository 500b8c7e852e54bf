#pragma once

#include <deque>
#include <string>
#include <vector>

/// What one run of the tool showed to the outside.
struct RunResult
{
    int status = 0; ///< as returned, before the system keeps its low eight bits
    std::string out;
    std::string err;
    std::vector<std::string> requests; ///< the bytes of each, in order
};

using Arguments = std::vector<std::string>;
using Replies = std::deque<std::string>;

/// Runs the whole tool in this process, with arguments as its argument vector, program name
/// included. Each request is answered with the next reply; with none left the engine is
/// unreachable. An exception that is not POCO's passes to the caller, as it ends the real program.
RunResult Run(const Arguments& arguments, Replies replies);

/// The same run with "--colors" given first and standard output on a terminal.
RunResult RunOnTerminal(Arguments arguments, const Replies& replies);

/// Unless holds: prints the rule and the run that broke it and ends the process.
void Require(bool holds, const char* rule, const RunResult& run);

/// Unless both are the same: prints both and ends the process.
void RequireSame(const char* title, const RunResult& actual, const RunResult& expected);
