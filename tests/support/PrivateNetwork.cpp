#include "tests/support/PrivateNetwork.h"

#include "tests/support/Descriptor.h"

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>

#include <fcntl.h>
#include <net/if.h>
#include <sched.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

bool networkIsPrivate = false;

bool WriteFile(const char* path, const std::string& text)
{
    std::ofstream file(path);
    file << text << std::flush;
    return file.good();
}

bool EnterNamespaces()
{
    if (geteuid() == 0) {
        return unshare(CLONE_NEWNET) == 0;
    }
    const std::string user = std::to_string(geteuid());
    const std::string group = std::to_string(getegid());
    return unshare(CLONE_NEWUSER | CLONE_NEWNET) == 0 &&
           WriteFile("/proc/self/uid_map", user + " " + user + " 1") &&
           WriteFile("/proc/self/setgroups", "deny") &&
           WriteFile("/proc/self/gid_map", group + " " + group + " 1");
}

void BringLoopbackUp()
{
    const Descriptor socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    ifreq request{};
    std::strcpy(request.ifr_name, "lo");
    request.ifr_flags = IFF_UP;
    Require(ioctl(socket.Get(), SIOCSIFFLAGS, &request) == 0, "bring loopback up");
}

void WaitForTurnOnRealLoopback()
{
    const char* const folder = std::getenv("TMPDIR");
    const std::string path =
        std::string(folder != nullptr ? folder : "/tmp") + "/quorlan-tests-engine-address.lock";
    // Never closed, and inherited: the lock ends with the last process that has it.
    const int lock = open(path.c_str(), O_RDWR | O_CREAT, 0666);
    Require(lock >= 0 && flock(lock, LOCK_EX) == 0, path);
}

} // namespace

void ClaimEngineAddress()
{
    if (std::getenv("QUORLAN_TESTS_SHARE_LOOPBACK") == nullptr && EnterNamespaces()) {
        BringLoopbackUp();
        networkIsPrivate = true;
    } else {
        WaitForTurnOnRealLoopback();
    }
}

void ShortenConnectTimeout()
{
    if (networkIsPrivate) {
        Require(WriteFile("/proc/sys/net/ipv4/tcp_syn_retries", "1"), "tcp_syn_retries");
    }
}
