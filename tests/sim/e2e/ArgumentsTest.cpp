#include "tests/sim/e2e/Simulator.h"
#include "tests/support/Tool.h"

#include <gtest/gtest.h>

TEST(SimulatorArguments, UnknownOptionIsRefused)
{
    EXPECT_EQ(Simulator({"--bogus"}).End(), Refused(64, "Unknown option specified: bogus"));
}

TEST(SimulatorArguments, OptionWithoutItsArgumentIsRefused)
{
    EXPECT_EQ(Simulator({"--fault"}).End(),
              Refused(64, "Missing option argument: fault requires <fault>"));
}

TEST(SimulatorArguments, FaultWithAMistakeInAnyPlaceIsRefused)
{
    EXPECT_EQ(Simulator({"--fault=half", "--fault=slow:dance"}).End(),
              Refused(64, "fault \"slow:dance\": unknown command \"dance\""));
}

TEST(SimulatorArguments, FaultThatAcceptsNobodyIsRefusedNextToOthers)
{
    EXPECT_EQ(Simulator({"--fault=half:list", "--fault=no-accept"}).End(),
              Refused(64, "fault \"no-accept\" cannot be combined with others"));
}

TEST(SimulatorArguments, DelayThatIsNoNumberIsRefused)
{
    for (const std::string delay : {"", "soon", "-1", "0.5", "86400001"}) {
        EXPECT_EQ(
            Simulator({"--delay=" + delay}).End(),
            Refused(64, "\"" + delay + "\" is not a number of milliseconds from 0 to 86400000"));
    }
}

TEST(SimulatorArguments, FaultWithoutANameIsRefused)
{
    EXPECT_EQ(Simulator({"--fault="}).End(), Refused(64, "unknown fault \"\" (--help lists them)"));
}

TEST(SimulatorArguments, ArgumentThatIsNoOptionIsRefused)
{
    EXPECT_EQ(Simulator({"half"}).End(), Refused(64, "unexpected argument \"half\""));
}

TEST(SimulatorArguments, VersionIsThatOfTheTool)
{
    const std::string ofTheTool = RunTool({"--version"}).out;
    const std::string line = ofTheTool.substr(0, ofTheTool.find('\n') + 1);

    EXPECT_EQ(line.rfind("quorlan v", 0), 0U) << line;
    EXPECT_EQ(Simulator({"--version"}).End(),
              (Outcome{0, "vantrel-sim" + line.substr(line.find(' ')), ""}));
    EXPECT_EQ(Simulator({"-v", "--bogus"}).End().status, 0);
}

TEST(SimulatorArguments, HelpExplainsOptionsAndFaults)
{
    EXPECT_EQ(Simulator({"--help"}).End(),
              (Outcome{0,
                       R"(usage: vantrel-sim [<option>...] [-- <command> [<argument>...]]
Simulates the engine: answers clients on 127.0.0.1:7777 and logs every request
to standard error. Runs the command, if one is given, and ends with it and its
exit status.

-h, --help                  Display help information
-v, --version               Display the version
-s<file>, --state=<file>    Read the services and modules from a JSON file
-f<fault>, --fault=<fault>  Inject a fault (see below; repeatable)
--delay=<milliseconds>      Wait before each reply
--log=<file>                Write the log to a file instead of standard error
--log-format=<format>       Write the log as text (default) or as json
--isolated                  Give simulator and command a network of their own
--control                   Take commands from standard input, such as "help"

A fault is written <name>[:<command>][@<n>]. It is for every request, for those
of the command or for the <n>th of them. The first that fits the request counts.
The names, and whether the engine carries the command out:
  no-accept           no   accepts no connection; takes no <command> and no <n>
  close               no   closes the connection without reading the request
  silent              yes  reads the request and never answers
  slow                yes  sends the reply a byte at a time
  half                yes  sends half of the reply and closes
  reset               yes  sends half of the reply and resets the connection
  stay-open           yes  sends the reply and leaves the connection open
  garbage             yes  replies with something that is not JSON
  wrong-type          yes  replies with a JSON array instead of an object
  no-result-code      yes  leaves "resultCode" out of the reply
  error-code          no   refuses every request with a code and a description
  refused-status      yes  refuses "engine-status" in a reply with all its members
  control-characters  yes  puts escape sequences, tabs and line ends into texts
  huge                yes  answers "list" with many megabytes
)",
                       ""}));
}
