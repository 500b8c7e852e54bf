#pragma once

#include <deque>
#include <string>
#include <vector>

/// What one run of the tool showed to the outside.
struct Outcome
{
    int status = 0; ///< as returned, before the system keeps its low eight bits
    std::string out;
    std::string err;
    std::vector<std::string> requests; ///< the bytes of each, in order
};

using Words = std::vector<std::string>;
using Replies = std::deque<std::string>;

/// Runs the whole tool in this process, with words as its argument vector, program name included.
/// Each request is answered with the next of replies; with none left the engine is unreachable.
/// An exception that is not POCO's passes to the caller, as it ends the real program.
Outcome Run(const Words& words, Replies replies);

/// The same run with "--colors" given first and standard output on a terminal.
Outcome RunOnTerminal(Words words, const Replies& replies);
