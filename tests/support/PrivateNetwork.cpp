#include "tests/support/PrivateNetwork.h"

#include "sim/PrivateNetwork.h"
#include "tests/support/Descriptor.h"

#include <cstdlib>
#include <fstream>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>

namespace {

bool networkIsPrivate = false;

bool TryToEnterPrivateNetwork()
{
    try {
        sim::EnterPrivateNetwork();
        return true;
    } catch (const std::system_error&) {
        return false;
    }
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
    networkIsPrivate =
        std::getenv("QUORLAN_TESTS_SHARE_LOOPBACK") == nullptr && TryToEnterPrivateNetwork();
    if (!networkIsPrivate) {
        WaitForTurnOnRealLoopback();
    }
}

void ShortenConnectTimeout()
{
    if (networkIsPrivate) {
        std::ofstream file("/proc/sys/net/ipv4/tcp_syn_retries");
        file << 1 << std::flush;
        Require(file.good(), "tcp_syn_retries");
    }
}
