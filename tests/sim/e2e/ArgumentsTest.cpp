#include "tests/sim/e2e/Simulator.h"

#include <gtest/gtest.h>

TEST(SimulatorArguments, UnknownOptionIsRefused)
{
    EXPECT_EQ(Simulator({"--bogus"}).End(), Refused(64, "Unknown option specified: bogus"));
}

TEST(SimulatorArguments, OptionWithoutItsArgumentIsRefused)
{
    EXPECT_EQ(Simulator({"--fault"}).End(),
              Refused(64, "Missing option argument: fault requires <name>"));
}

TEST(SimulatorArguments, FaultGivenTwiceIsRefused)
{
    EXPECT_EQ(Simulator({"--fault=half", "--fault=slow"}).End(),
              Refused(64, "Option must not be given more than once: fault"));
}

TEST(SimulatorArguments, FaultWithoutANameIsRefused)
{
    EXPECT_EQ(Simulator({"--fault="}).End(), Refused(64, "unknown fault \"\" (--help lists them)"));
}

TEST(SimulatorArguments, ArgumentThatIsNoOptionIsRefused)
{
    EXPECT_EQ(Simulator({"half"}).End(), Refused(64, "unexpected argument \"half\""));
}

TEST(SimulatorArguments, HelpExplainsOptionsAndFaults)
{
    EXPECT_EQ(Simulator({"--help"}).End(),
              (Outcome{0,
                       R"(usage: vantrel-sim [--state=<file>] [--fault=<name>]
Simulates the engine: answers clients on 127.0.0.1:7777 and logs every request
to standard error.

-h, --help                Display help information
-s<file>, --state=<file>  Read the services and modules from a JSON file
-f<name>, --fault=<name>  Inject one of the faults below

Faults, each applied to every connection:
  close           closes the connection at once after accepting it
  silent          reads the request and never answers
  slow            sends the reply a byte at a time
  half            sends half of the reply and closes
  garbage         replies with something that is not JSON
  wrong-type      replies with a JSON array instead of an object
  no-result-code  leaves "resultCode" out of the reply
  error-code      refuses every request with a code and a description
  huge            answers "list" with many megabytes
  reset           sends half of the reply and resets the connection
)",
                       ""}));
}
