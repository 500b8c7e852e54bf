#pragma once

#include <stdexcept>
#include <string>

namespace sim {

/// Why the simulator cannot start: one line for the user and the exit status that goes with it,
/// one of Poco::Util::Application::ExitCode.
class StartError: public std::runtime_error
{
public:
    StartError(int status, const std::string& message) : std::runtime_error(message), status(status)
    {
    }

    const int status;
};

} // namespace sim
