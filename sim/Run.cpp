// The life of the simulator, from its start to its end. One thread waits for what happens around
// it; those of the server talk to the clients.

#include "sim/Run.h"

#include "sim/ConnectionHandler.h"
#include "sim/Control.h"
#include "sim/PrivateNetwork.h"
#include "sim/RunCommand.h"
#include "sim/Server.h"
#include "sim/Signals.h"
#include "sim/StartError.h"
#include "sim/StateFile.h"

#include <Poco/Util/Application.h>

#include <array>
#include <cstdlib>
#include <system_error>

#include <poll.h>

namespace sim {

namespace {

Log OpenLog(const Settings& settings)
{
    return settings.logFile ? Log(*settings.logFile, settings.logFormat) : Log(settings.logFormat);
}

void Isolate()
{
    try {
        EnterPrivateNetwork();
    } catch (const std::system_error& error) {
        throw StartError(Poco::Util::Application::EXIT_UNAVAILABLE,
                         std::string("no network of its own: ") + error.what());
    }
}

/// Signals that end the simulator, or are for its command.
Signals WatchSignals(bool hasCommand)
{
    return hasCommand ? Signals{SIGINT, SIGTERM, SIGHUP, SIGCHLD} : Signals{SIGINT, SIGTERM};
}

/// The exit status of the simulator after a signal, if that ends it.
std::optional<int> Handle(const signalfd_siginfo& signal, const std::optional<RunCommand>& command)
{
    if (!command) {
        return Poco::Util::Application::EXIT_OK;
    }
    if (signal.ssi_signo == SIGCHLD) {
        return command->ExitStatus();
    }
    command->PassOn(signal);
    return std::nullopt;
}

/// Returns the exit status of the simulator.
int AwaitEnd(const Signals& signals, const std::optional<RunCommand>& command,
             std::optional<Control>& control)
{
    for (;;) {
        std::array<pollfd, 2> events{
            {{signals.Descriptor(), POLLIN, 0}, {control ? control->Descriptor() : -1, POLLIN, 0}}};
        poll(events.data(), events.size(), control ? control->Patience() : -1);
        if (control) {
            control->Continue();
        }
        if (events[1].revents != 0) {
            control->Read();
        }
        if (events[0].revents != 0) {
            if (const auto status = Handle(signals.Next(), command)) {
                return *status;
            }
        }
    }
}

/// The same, also for a server that cannot go on.
int StatusAtTheEnd(const Signals& signals, const std::optional<RunCommand>& command,
                   std::optional<Control>& control)
{
    try {
        return AwaitEnd(signals, command, control);
    } catch (const StartError& error) {
        Report(error.what());
        return error.status;
    }
}

} // namespace

void Run(const Settings& settings)
{
    Service service{Engine(settings.stateFile ? LoadState(*settings.stateFile) : DefaultState()),
                    FaultRules(settings.faults), settings.delay, OpenLog(settings)};
    if (settings.isolated) {
        Isolate();
    }
    const Signals signals = WatchSignals(!settings.command.empty());
    Server server(service);
    server.Listen();
    std::optional<RunCommand> command;
    if (!settings.command.empty()) {
        command.emplace(settings.command, signals.BlockedBefore());
    }
    std::optional<Control> control;
    if (settings.control) {
        control.emplace(service, server);
    }
    server.Accept();
    const int status = StatusAtTheEnd(signals, command, control);
    // A handler may be waiting for its client, for as long as the client likes. So no thread is
    // joined and nothing that a thread may be using is destroyed; the kernel closes the sockets.
    std::quick_exit(status);
}

} // namespace sim
