#pragma once

#include "sim/Clock.h"
#include "sim/ConnectionHandler.h"
#include "sim/Server.h"

#include <optional>
#include <string>
#include <vector>

#include <unistd.h>

namespace sim {

/// Commands to the simulator itself, from standard input, a line each. What becomes of each is
/// written to the log.
class Control
{
public:
    Control(Service& service, Server& server);

    /// Can be read from when there is input; -1 after its end.
    int Descriptor() const { return descriptor; }
    /// Reads what there is and carries out the lines that are complete.
    void Read();

    /// How many milliseconds may pass until Continue() is to be called; -1: any.
    int Patience() const;
    /// Does what is due by now. Throws StartError if the address cannot be listened on again.
    void Continue();

private:
    using Words = std::vector<std::string>;

    struct Command
    {
        const char* name;
        const char* arguments;
        std::size_t argumentCount;
        /// Returns what to write to the log; empty if the arguments were not understood.
        std::string (Control::*run)(const Words& arguments);
    };

    static const Command commands[];

    void CarryOut(const std::string& line);
    std::string RunLine(const Words& words);
    std::string SetState(const Words& arguments);
    std::string SetDebugMode(const Words& arguments);
    std::string SetSafeMode(const Words& arguments);
    std::string SetFault(const Words& arguments);
    std::string Down(const Words& arguments);
    std::string Help(const Words& arguments);

    Service& service;
    Server& server;
    int descriptor = STDIN_FILENO;
    std::string input;                // the beginning of a line
    std::optional<TimePoint> downEnd; // none while it listens
};

} // namespace sim
