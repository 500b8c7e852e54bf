#include "app/Quorlan.h"

#include <Poco/AutoPtr.h>
#include <Poco/Exception.h>

#include <array>
#include <climits>

#include <unistd.h>

namespace {

// POCO's application aborts without a working directory. An update job may have removed the folder
// it runs the tool in.
void EnsureWorkingDirectory()
{
    std::array<char, PATH_MAX> path; // NOLINT(*-member-init): written by getcwd
    if (getcwd(path.data(), path.size()) == nullptr) {
        [[maybe_unused]] const int result = chdir("/");
    }
}

} // namespace

int main(int argc, char** argv)
{
    EnsureWorkingDirectory();
    Poco::AutoPtr<Quorlan> quorlan(new Quorlan);
    try {
        quorlan->init(argc, argv);
    } catch (const Poco::Exception& exception) {
        quorlan->logger().log(exception);
        return Quorlan::EXIT_CONFIG;
    }
    return quorlan->run();
}
