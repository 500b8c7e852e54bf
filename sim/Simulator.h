#pragma once

#include <Poco/Util/Application.h>
#include <Poco/Util/OptionSet.h>

#include <optional>
#include <string>
#include <vector>

namespace sim {

/// The simulator of the engine, as a program.
class Simulator: public Poco::Util::Application
{
protected:
    void defineOptions(Poco::Util::OptionSet& options) override;
    int main(const std::vector<std::string>& args) override;

private:
    void HandleHelp(const std::string& name, const std::string& value);
    void HandleState(const std::string& name, const std::string& value);
    void HandleFault(const std::string& name, const std::string& value);
    void HandleDelay(const std::string& name, const std::string& value);

    void PrintHelp() const;
    /// Serves until SIGINT or SIGTERM, then ends the process. Throws StartError.
    [[noreturn]] void Serve();

    bool helpRequested = false;
    std::optional<std::string> stateFile; // none: the default set
    std::vector<std::string> faults;
    std::optional<std::string> delay; // in milliseconds
};

/// Runs the program and reports why it could not start. The result is its exit status.
int RunSimulator(int argc, char** argv);

} // namespace sim
