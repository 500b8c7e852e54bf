// Without POCO, as the tests' programs use it, too.

#include "sim/PrivateNetwork.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <string>
#include <system_error>

#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace sim {

namespace {

void Require(bool succeeded, const std::string& what)
{
    if (!succeeded) {
        throw std::system_error(errno, std::generic_category(), what);
    }
}

void WriteFile(const std::string& path, const std::string& text)
{
    std::ofstream file(path);
    file << text << std::flush;
    Require(file.good(), path);
}

void EnterNamespaces()
{
    if (geteuid() == 0) {
        Require(unshare(CLONE_NEWNET) == 0, "network namespace");
        return;
    }
    const std::string user = std::to_string(geteuid());
    const std::string group = std::to_string(getegid());
    Require(unshare(CLONE_NEWUSER | CLONE_NEWNET) == 0, "user and network namespace");
    WriteFile("/proc/self/uid_map", user + " " + user + " 1");
    WriteFile("/proc/self/setgroups", "deny");
    WriteFile("/proc/self/gid_map", group + " " + group + " 1");
}

void BringLoopbackUp()
{
    const int socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    ifreq request{};
    std::strcpy(request.ifr_name, "lo");
    request.ifr_flags = IFF_UP;
    const bool isUp = ioctl(socket, SIOCSIFFLAGS, &request) == 0;
    Require(isUp, "loopback");
    close(socket);
}

} // namespace

void EnterPrivateNetwork()
{
    EnterNamespaces();
    BringLoopbackUp();
}

} // namespace sim
