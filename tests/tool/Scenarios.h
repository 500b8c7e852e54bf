#pragma once

#include "tests/support/Tool.h"

#include <string>
#include <vector>

class ScriptedEngine;

/// A run of the tool and the exchange with the engine at which a fault is tried: the only one of
/// its command, or one of the two of a command that needs debug mode.
struct Scenario
{
    std::string name; // letters, digits and underscores
    std::vector<std::string> commandLine;
    std::vector<std::string> requests; // of the whole run, when nothing goes wrong
    std::vector<std::string> replies;  // likewise; each is smaller than 8192 bytes
    std::size_t faulty;                // the number of the exchange
    Outcome good;                      // when nothing goes wrong

    const std::string& Reply() const { return replies.at(faulty); }

    /// Make the engine do the exchanges before, or after, the faulty one well.
    void ServeUpToFault(ScriptedEngine& engine) const;
    void ServeAfterFault(ScriptedEngine& engine) const;

    /// The requests that are sent when the run ends after the faulty exchange.
    std::vector<std::string> RequestsUpToFault() const;
    /// How a run ends whose engine refuses the connection.
    Outcome Refused() const;
    /// How a run ends whose reply cannot be read at all, for the reason that POCO gives.
    Outcome Unreadable(const std::string& reason) const;

private:
    bool IsDebugModeQuery() const { return faulty + 1 < replies.size(); }
};

/// All seventeen: seven commands that talk to the engine once, five that do twice. A test's
/// parameter is a pointer to one, as each test is a process that registers all the tests of its
/// program first, and copies would take longer than the test.
const std::vector<Scenario>& Scenarios();
