// The simulator and its command in a network of their own.

#include "tests/sim/e2e/Client.h"
#include "tests/sim/e2e/Simulator.h"
#include "tests/support/Tool.h"

#include <gtest/gtest.h>

#include <unistd.h>

namespace {

const std::string program = VANTREL_SIM;

/// Runs a script as a user who is not root, whoever runs the tests. The simulator is in the current
/// folder: the build folder may be out of the user's reach.
Outcome RunAsUser(const std::string& script)
{
    const std::string user =
        geteuid() == 0 ? "setpriv --reuid=1234 --regid=1234 --clear-groups " : "";
    return RunShell(
        "set -e; folder=$(mktemp -d); trap 'rm -r $folder' EXIT; chmod 755 $folder; cp " + program +
        " $folder; cd $folder; " + user + "sh -c '" + script + "'");
}

} // namespace

TEST(SimulatorIsolated, HasTheAddressForItself)
{
    const Simulator other({"--fault=garbage"});

    const std::string line = LogLine(pidRequest, pidReply);
    EXPECT_EQ(RunShell(program + " --isolated -- $QUORLAN --pid=pump1"),
              (Outcome{0, "1004\n", Served(line).err}));
}

TEST(SimulatorIsolated, IsOutOfReachForOthers)
{
    Simulator isolated({"--isolated", "--", "sleep", "1000"});

    EXPECT_THROW(Client(), std::system_error);

    EXPECT_EQ(isolated.End().status, 128 + SIGTERM);
}

TEST(SimulatorIsolated, HasNothingButLoopback)
{
    EXPECT_EQ(::Run({program, "--isolated", "--", "sh", "-c",
                     "tail -n +3 /proc/net/dev | cut -d: -f1; cat /sys/class/net/lo/operstate"})
                  .out,
              "    lo\nunknown\n");
}

TEST(SimulatorIsolated, LeavesUserAndGroupOfAUserWhoIsNotRoot)
{
    const Outcome before = RunAsUser("id -u; id -g");
    ASSERT_EQ(before.out.find("0\n"), std::string::npos) << before.out << before.err;

    EXPECT_EQ(RunAsUser("./vantrel-sim --isolated -- sh -c \"id -u; id -g\""),
              (Outcome{0, before.out, Served("").err}));
}

TEST(SimulatorIsolated, IsRefusedInOneLineWhereTheKernelRefuses)
{
    // Within a user namespace of its own, a process may lower the limits.
    EXPECT_EQ(RunShell("exec unshare --user --map-root-user sh -c "
                       "'echo 0 >/proc/sys/user/max_net_namespaces && exec " +
                       program + " --isolated -- echo run'"),
              Refused(69, "no network of its own: network namespace: No space left on device"));
}

TEST(SimulatorIsolated, NeedsACommand)
{
    EXPECT_EQ(Simulator({"--isolated"}).End(),
              Refused(64, "--isolated needs a command: vantrel-sim --isolated -- <command>"));
}
