// The life of the simulator, from its start to its end. One thread waits for what happens around
// it; those of the server talk to the clients.

#include "sim/Run.h"

#include "sim/ConnectionHandler.h"
#include "sim/Listener.h"
#include "sim/PrivateNetwork.h"
#include "sim/RunCommand.h"
#include "sim/Server.h"
#include "sim/Signals.h"
#include "sim/StartError.h"
#include "sim/StateFile.h"

#include <Poco/Util/Application.h>

#include <cstdlib>
#include <system_error>

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

/// Returns the exit status of the simulator.
int AwaitEnd(const Signals& signals, const std::optional<RunCommand>& command)
{
    for (;;) {
        const signalfd_siginfo signal = signals.Next();
        if (!command) {
            return Poco::Util::Application::EXIT_OK;
        }
        if (signal.ssi_signo != SIGCHLD) {
            command->PassOn(signal);
        } else if (const auto status = command->ExitStatus()) {
            return *status;
        }
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
    Server server(new ConnectionHandlerFactory(service));
    server.Listen();
    service.log.Write("listening on " + EngineAddress().toString());
    std::optional<RunCommand> command;
    if (!settings.command.empty()) {
        command.emplace(settings.command, signals.BlockedBefore());
    }
    if (service.faults.AcceptNobody()) {
        server.AcceptNobody();
    } else {
        server.AcceptEverybody();
    }
    const int status = AwaitEnd(signals, command);
    // A handler may be waiting for its client, for as long as the client likes. So no thread is
    // joined and nothing that a thread may be using is destroyed; the kernel closes the sockets.
    std::quick_exit(status);
}

} // namespace sim
