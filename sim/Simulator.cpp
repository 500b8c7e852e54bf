#include "sim/Simulator.h"

#include "sim/ConnectionHandler.h"
#include "sim/Engine.h"
#include "sim/Faults.h"
#include "sim/Listener.h"
#include "sim/Log.h"
#include "sim/StartError.h"
#include "sim/StateFile.h"

#include <Poco/AutoPtr.h>
#include <Poco/Exception.h>
#include <Poco/Net/TCPServer.h>
#include <Poco/Net/TCPServerParams.h>
#include <Poco/ThreadPool.h>
#include <Poco/Util/HelpFormatter.h>
#include <Poco/Util/Option.h>
#include <Poco/Util/OptionCallback.h>

#include <csignal>
#include <cstdlib>
#include <iomanip>
#include <iostream>

namespace sim {

namespace {

constexpr int maxConnections = 1024; // as many more wait until one of these ends

/// Blocks the signals that end the simulator, and returns them. Threads inherit this mask, so only
/// the wait for the signals sees them if it is set before any thread starts.
sigset_t BlockTerminationSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    return signals;
}

Poco::Net::TCPServerParams::Ptr ServerParams()
{
    Poco::Net::TCPServerParams::Ptr params = new Poco::Net::TCPServerParams;
    params->setMaxThreads(maxConnections);
    params->setMaxQueued(maxConnections);
    return params;
}

} // namespace

void Simulator::defineOptions(Poco::Util::OptionSet& options)
{
    using Poco::Util::Option;
    using Callback = Poco::Util::OptionCallback<Simulator>;

    Application::defineOptions(options);
    options.addOption(Option("help", "h", "Display help information")
                          .callback(Callback(this, &Simulator::HandleHelp)));
    options.addOption(Option("state", "s", "Read the services and modules from a JSON file")
                          .argument("<file>")
                          .callback(Callback(this, &Simulator::HandleState)));
    options.addOption(Option("fault", "f", "Inject one of the faults below")
                          .argument("<name>")
                          .callback(Callback(this, &Simulator::HandleFault)));
}

void Simulator::HandleHelp(const std::string& /*name*/, const std::string& /*value*/)
{
    helpRequested = true;
    stopOptionsProcessing();
}

void Simulator::HandleState(const std::string& /*name*/, const std::string& value)
{
    stateFile = value;
}

void Simulator::HandleFault(const std::string& /*name*/, const std::string& value)
{
    faultName = value;
}

int Simulator::main(const std::vector<std::string>& args)
{
    try {
        if (helpRequested) {
            PrintHelp();
            return EXIT_OK;
        }
        if (!args.empty()) {
            throw StartError(EXIT_USAGE, "unexpected argument \"" + args.front() + "\"");
        }
        Serve();
    } catch (const StartError& error) {
        Log(error.what());
        return error.status;
    }
}

void Simulator::PrintHelp() const
{
    Poco::Util::HelpFormatter formatter(options());
    formatter.setCommand("vantrel-sim");
    formatter.setUsage("[--state=<file>] [--fault=<name>]");
    formatter.setHeader("Simulates the engine: answers clients on " + EngineAddress().toString() +
                        " and logs every request to standard error.");
    formatter.format(std::cout);

    std::cout << "\nFaults, each applied to every connection:\n";
    for (const Fault& fault : AllFaults()) {
        std::cout << "  " << std::left << std::setw(16) << fault.name << fault.help << "\n";
    }
    std::cout << std::flush;
}

void Simulator::Serve()
{
    const Fault& fault = faultName ? FindFault(*faultName) : NoFault();
    Engine engine(stateFile ? LoadState(*stateFile) : DefaultState());
    const sigset_t signals = BlockTerminationSignals();
    Poco::ThreadPool threads(2, maxConnections);
    Poco::Net::TCPServer server(new ConnectionHandlerFactory(engine, fault), threads, Listen(),
                                ServerParams());
    server.start();
    Log("listening on " + EngineAddress().toString());
    int signal = 0;
    sigwait(&signals, &signal);
    // A handler may be waiting for its client, for as long as the client likes. So no thread is
    // joined and nothing that a thread may be using is destroyed; the kernel closes the sockets.
    std::quick_exit(EXIT_OK);
}

int RunSimulator(int argc, char** argv)
{
    Poco::AutoPtr<Simulator> simulator;
    try {
        simulator = new Simulator;
        simulator->init(argc, argv);
    } catch (const Poco::Exception& exception) {
        Log(exception.displayText());
        return Simulator::EXIT_USAGE;
    }
    return simulator->run();
}

} // namespace sim
