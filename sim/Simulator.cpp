#include "sim/Simulator.h"

#include "sim/Listener.h"
#include "sim/Number.h"
#include "sim/StartError.h"

#include <Poco/AutoPtr.h>
#include <Poco/Exception.h>
#include <Poco/Util/HelpFormatter.h>
#include <Poco/Util/Option.h>
#include <Poco/Util/OptionCallback.h>

#include <algorithm>
#include <iomanip>
#include <iostream>
#include <utility>

namespace sim {

namespace {

constexpr std::uint64_t maxDelay = 86400000; // a day

[[noreturn]] void RefuseCommandLine(const std::string& problem)
{
    throw StartError(Poco::Util::Application::EXIT_USAGE, problem);
}

} // namespace

Simulator::Simulator(std::optional<std::vector<std::string>> command, std::string version)
    : command(std::move(command)), version(std::move(version))
{
}

void Simulator::defineOptions(Poco::Util::OptionSet& options)
{
    using Poco::Util::Option;
    using Callback = Poco::Util::OptionCallback<Simulator>;

    Application::defineOptions(options);
    options.addOption(Option("help", "h", "Display help information")
                          .callback(Callback(this, &Simulator::HandleHelp)));
    options.addOption(Option("version", "v", "Display the version")
                          .callback(Callback(this, &Simulator::HandleVersion)));
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
    options.addOption(Option("log", "", "Write the log to a file instead of standard error")
                          .argument("<file>")
                          .callback(Callback(this, &Simulator::HandleLog)));
    options.addOption(Option("log-format", "", "Write the log as text (default) or as json")
                          .argument("<format>")
                          .callback(Callback(this, &Simulator::HandleLogFormat)));
    options.addOption(Option("isolated", "", "Give simulator and command a network of their own")
                          .callback(Callback(this, &Simulator::HandleIsolated)));
    options.addOption(Option("control", "", "Take commands from standard input, such as \"help\"")
                          .callback(Callback(this, &Simulator::HandleControl)));
}

void Simulator::HandleHelp(const std::string& /*name*/, const std::string& /*value*/)
{
    helpRequested = true;
    stopOptionsProcessing();
}

void Simulator::HandleVersion(const std::string& /*name*/, const std::string& /*value*/)
{
    versionRequested = true;
    stopOptionsProcessing();
}

void Simulator::HandleState(const std::string& /*name*/, const std::string& value)
{
    settings.stateFile = value;
}

void Simulator::HandleFault(const std::string& /*name*/, const std::string& value)
{
    settings.faults.push_back(ParseFaultRule(value));
}

void Simulator::HandleDelay(const std::string& /*name*/, const std::string& value)
{
    const auto number = ParseWhole(value, maxDelay);
    if (!number) {
        RefuseCommandLine("\"" + value + "\" is not a number of milliseconds from 0 to " +
                          std::to_string(maxDelay));
    }
    settings.delay = std::chrono::milliseconds(*number);
}

void Simulator::HandleLog(const std::string& /*name*/, const std::string& value)
{
    settings.logFile = value;
}

void Simulator::HandleLogFormat(const std::string& /*name*/, const std::string& value)
{
    if (value != "text" && value != "json") {
        RefuseCommandLine("\"" + value + "\" is not a format of the log: text, json");
    }
    settings.logFormat = value == "json" ? LogFormat::Json : LogFormat::Text;
}

void Simulator::HandleIsolated(const std::string& /*name*/, const std::string& /*value*/)
{
    settings.isolated = true;
}

void Simulator::HandleControl(const std::string& /*name*/, const std::string& /*value*/)
{
    settings.control = true;
}

int Simulator::main(const std::vector<std::string>& args)
{
    try {
        if (helpRequested) {
            PrintHelp();
            return EXIT_OK;
        }
        if (versionRequested) {
            std::cout << "vantrel-sim v" << version << std::endl;
            return EXIT_OK;
        }
        CheckCommandLine(args);
        settings.command = command.value_or(std::vector<std::string>());
        Run(settings);
    } catch (const StartError& error) {
        Report(error.what());
        return error.status;
    }
}

void Simulator::CheckCommandLine(const std::vector<std::string>& args) const
{
    if (!args.empty()) {
        RefuseCommandLine("unexpected argument \"" + args.front() + "\"");
    }
    if (command && command->empty()) {
        RefuseCommandLine("no command after \"--\"");
    }
    if (settings.isolated && !command) {
        RefuseCommandLine("--isolated needs a command: vantrel-sim --isolated -- <command>");
    }
    if (settings.control && command) {
        RefuseCommandLine("--control and a command cannot share standard input");
    }
    for (const FaultRule& rule : settings.faults) {
        if (rule.fault->reach == Reach::Queued && settings.faults.size() > 1) {
            RefuseCommandLine(std::string("fault \"") + rule.fault->name +
                              "\" cannot be combined with others");
        }
    }
}

void Simulator::PrintHelp() const
{
    Poco::Util::HelpFormatter formatter(options());
    formatter.setCommand("vantrel-sim");
    formatter.setUsage("[<option>...] [-- <command> [<argument>...]]");
    formatter.setHeader("Simulates the engine: answers clients on " + EngineAddress().toString() +
                        " and logs every request to standard error. Runs the command, if one is "
                        "given, and ends with it and its exit status.");
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

int RunSimulator(int argc, char** argv, const std::string& version)
{
    // What follows is the command's, also where it looks like an option.
    char** const end = argv + argc;
    char** const separator = std::find(argv + 1, end, std::string("--"));
    std::optional<std::vector<std::string>> command;
    if (separator != end) {
        command.emplace(separator + 1, end);
    }
    Poco::AutoPtr<Simulator> simulator;
    try {
        simulator = new Simulator(std::move(command), version);
        simulator->init(static_cast<int>(separator - argv), argv);
    } catch (const StartError& error) {
        Report(error.what());
        return error.status;
    } catch (const Poco::Exception& exception) {
        Report(exception.displayText());
        return Simulator::EXIT_USAGE;
    }
    return simulator->run();
}

} // namespace sim
