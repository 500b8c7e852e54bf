#pragma once

#include "tests/support/Descriptor.h"

#include <iosfwd>
#include <string>
#include <vector>

#include <sys/types.h>

/// What the run of a program left behind. Compared whole; a failed comparison prints both sides.
struct Outcome
{
    int status = 0;  // exit status; minus the signal's number if one ended the run
    std::string out; // every byte on standard output
    std::string err; // every byte on standard error

    bool operator==(const Outcome& other) const;
};
void PrintTo(const Outcome& outcome, std::ostream* stream);

/// A stream of a program: the end it writes to and the end the test reads from.
struct Stream
{
    Descriptor reader;
    Descriptor writer;
};

Stream MakePipe();

/// Starts a program with standard input empty and leaves it running. Throws std::system_error when
/// it cannot be started.
pid_t Spawn(std::vector<std::string> commandLine, const Stream& out, const Stream& err);

/// Appends the next bytes, waiting for them; false at the end of the stream.
bool ReadInto(const Descriptor& reader, std::string& text);

/// Adds all that a spawned program still writes, waits for its end and adds the status.
void Finish(pid_t process, Stream& out, Stream& err, Outcome& outcome);

/// Runs a program to its end, its standard streams being those that are given.
Outcome Run(std::vector<std::string> commandLine, Stream out = MakePipe(), Stream err = MakePipe());
