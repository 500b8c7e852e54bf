#pragma once

#include <Poco/Util/OptionSet.h>
#include <Poco/Util/ServerApplication.h>

#include <optional>
#include <string>
#include <vector>

namespace sim {

/// The stand-in for the engine, as a program.
class Simulator: public Poco::Util::ServerApplication
{
public:
    /// POCO keeps the one that runs after init() to itself.
    using Poco::Util::ServerApplication::run;

protected:
    void defineOptions(Poco::Util::OptionSet& options) override;
    int main(const std::vector<std::string>& args) override;

private:
    void HandleHelp(const std::string& name, const std::string& value);
    void HandleState(const std::string& name, const std::string& value);
    void HandleFault(const std::string& name, const std::string& value);

    void PrintHelp() const;
    /// Serves until a signal ends it. Throws StartError.
    void Serve();

    bool helpRequested = false;
    std::optional<std::string> stateFile; // none: the default set
    std::optional<std::string> faultName;
};

/// Runs the program and reports why it could not start. The result is its exit status.
int RunSimulator(int argc, char** argv);

} // namespace sim
