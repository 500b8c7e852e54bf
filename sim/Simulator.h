#pragma once

#include "sim/Run.h"

#include <Poco/Util/Application.h>
#include <Poco/Util/OptionSet.h>

#include <string>
#include <vector>

namespace sim {

/// The simulator of the engine, as a program: what its command line means. What it then does is in
/// Run.h.
class Simulator: public Poco::Util::Application
{
public:
    /// The command is what follows "--" on the command line, if that is there.
    Simulator(std::optional<std::vector<std::string>> command, std::string version);

protected:
    void defineOptions(Poco::Util::OptionSet& options) override;
    int main(const std::vector<std::string>& args) override;

private:
    void HandleHelp(const std::string& name, const std::string& value);
    void HandleVersion(const std::string& name, const std::string& value);
    void HandleState(const std::string& name, const std::string& value);
    void HandleFault(const std::string& name, const std::string& value);
    void HandleDelay(const std::string& name, const std::string& value);
    void HandleLog(const std::string& name, const std::string& value);
    void HandleLogFormat(const std::string& name, const std::string& value);
    void HandleIsolated(const std::string& name, const std::string& value);
    void HandleControl(const std::string& name, const std::string& value);

    void PrintHelp() const;
    /// Throws StartError for what is wrong with the command line as a whole.
    void CheckCommandLine(const std::vector<std::string>& args) const;

    bool helpRequested = false;
    bool versionRequested = false;
    const std::optional<std::vector<std::string>> command;
    const std::string version;
    Settings settings;
};

/// Runs the program and reports why it could not start. The result is its exit status.
int RunSimulator(int argc, char** argv, const std::string& version);

} // namespace sim
