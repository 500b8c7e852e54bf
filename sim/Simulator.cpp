#include "sim/Simulator.h"

#include "sim/ConnectionHandler.h"
#include "sim/Engine.h"
#include "sim/FaultRules.h"
#include "sim/Faults.h"
#include "sim/Listener.h"
#include "sim/Log.h"
#include "sim/Number.h"
#include "sim/Server.h"
#include "sim/StartError.h"
#include "sim/StateFile.h"

#include <Poco/AutoPtr.h>
#include <Poco/Exception.h>
#include <Poco/Util/HelpFormatter.h>
#include <Poco/Util/Option.h>
#include <Poco/Util/OptionCallback.h>

#include <csignal>
#include <cstdlib>
#include <iomanip>
#include <iostream>

namespace sim {

namespace {

constexpr std::uint64_t maxDelay = 86400000; // a day

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

std::vector<FaultRule> ParseFaultRules(const std::vector<std::string>& texts)
{
    std::vector<FaultRule> rules;
    for (const std::string& text : texts) {
        rules.push_back(ParseFaultRule(text));
        if (texts.size() > 1 && rules.back().fault->reach == Reach::Queued) {
            throw StartError(Poco::Util::Application::EXIT_USAGE,
                             "fault \"" + text + "\" cannot be combined with others");
        }
    }
    return rules;
}

std::chrono::milliseconds ParseDelay(const std::string& text)
{
    const auto number = ParseWhole(text, maxDelay);
    if (!number) {
        throw StartError(Poco::Util::Application::EXIT_USAGE,
                         "\"" + text + "\" is not a number of milliseconds from 0 to " +
                             std::to_string(maxDelay));
    }
    return std::chrono::milliseconds(*number);
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
    options.addOption(Option("fault", "f", "Inject a fault (see below; repeatable)")
                          .argument("<fault>")
                          .repeatable(true)
                          .callback(Callback(this, &Simulator::HandleFault)));
    options.addOption(Option("delay", "", "Wait before each reply")
                          .argument("<milliseconds>")
                          .callback(Callback(this, &Simulator::HandleDelay)));
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
    faults.push_back(value);
}

void Simulator::HandleDelay(const std::string& /*name*/, const std::string& value)
{
    delay = value;
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
    formatter.setUsage("[<option>...]");
    formatter.setHeader("Simulates the engine: answers clients on " + EngineAddress().toString() +
                        " and logs every request to standard error.");
    formatter.format(std::cout);

    std::cout << R"(
A fault is written <name>[:<command>][@<n>]. It is for every request, for those
of the command or for the <n>th of them. The first that fits the request counts.
The names, and whether the engine carries the command out:
)";
    for (const Fault& fault : AllFaults()) {
        std::cout << "  " << std::left << std::setw(20) << fault.name << std::setw(5)
                  << (fault.reach == Reach::CarriedOut ? "yes" : "no") << fault.help << "\n";
    }
    std::cout << std::flush;
}

void Simulator::Serve()
{
    Service service{Engine(stateFile ? LoadState(*stateFile) : DefaultState()),
                    FaultRules(ParseFaultRules(faults)), ParseDelay(delay.value_or("0"))};
    const sigset_t signals = BlockTerminationSignals();
    Server server(new ConnectionHandlerFactory(service));
    server.Listen();
    Log("listening on " + EngineAddress().toString());
    if (service.faults.AcceptNobody()) {
        server.AcceptNobody();
    } else {
        server.AcceptEverybody();
    }
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
