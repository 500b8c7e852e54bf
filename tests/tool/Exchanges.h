#pragma once

#include "tests/support/Tool.h"

#include <iosfwd>
#include <string>
#include <vector>

class ScriptedEngine;

/// One place where the tool talks to the engine: a command that does so once, or one of the two
/// exchanges of a command that asks for the debug mode first.
struct Exchange
{
    std::string name; // letters and digits
    std::vector<std::string> commandLine;
    std::vector<std::string> requests; // of the whole run, when nothing goes wrong
    std::vector<std::string> replies;  // likewise; each is smaller than 8192 bytes
    std::size_t faulty;                // which of them a fault is tried at
    Outcome good;                      // when nothing goes wrong

    const std::string& Reply() const { return replies.at(faulty); }
    bool IsDebugModeQuery() const { return faulty + 1 < replies.size(); }

    /// Have the engine do the exchanges before, or after, the faulty one well.
    void ServeUpToFault(ScriptedEngine& engine) const;
    void ServeAfterFault(ScriptedEngine& engine) const;

    /// The requests that are sent when the run ends after the faulty exchange.
    std::vector<std::string> RequestsUpToFault() const;
    /// How a run ends whose engine refuses the connection.
    Outcome Refused() const;
    /// How a run ends whose reply cannot be read at all, for the reason that POCO gives.
    Outcome Unreadable(const std::string& reason) const;
};

void PrintTo(const Exchange* exchange, std::ostream* stream);

/// All seventeen: seven commands that talk to the engine once, five that do twice. They last as
/// long as the program; a test's parameter is a pointer, as each test is a process that registers
/// all the tests of its program first, and copies would take longer than the test.
const std::vector<const Exchange*>& Exchanges();

/// A reply of the same meaning with another member in front.
std::string WithMember(const std::string& reply, const std::string& member);
