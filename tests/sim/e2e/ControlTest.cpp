// Commands to the simulator, while it runs.

#include "tests/sim/e2e/Client.h"
#include "tests/sim/e2e/Simulator.h"
#include "tests/sim/e2e/TemporaryFile.h"
#include "tests/support/PrivateNetwork.h"
#include "tests/support/Tool.h"
#include "tests/tool/Texts.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>

namespace {

/// A simulator at whose other end of standard input the test sits.
class ControlledSimulator
{
public:
    explicit ControlledSimulator(std::vector<std::string> arguments = {})
        : fifo(Fifo()), input(open(fifo.Path().c_str(), O_RDWR | O_CLOEXEC)),
          simulator(WithControl(std::move(arguments)), fifo.Path())
    {
    }

    /// Sends the text and waits until the log says what became of it.
    void Say(const std::string& text, const std::string& confirmation)
    {
        Require(write(input.Get(), text.data(), text.size()) > 0, "fifo");
        simulator.AwaitLog("control: " + confirmation + "\n");
    }
    void EndInput() { input.Close(); }
    Simulator& Get() { return simulator; }

private:
    static TemporaryFile Fifo() { return TemporaryFile(TemporaryFile::Kind::Fifo); }
    static std::vector<std::string> WithControl(std::vector<std::string> arguments)
    {
        arguments.emplace_back("--control");
        return arguments;
    }

    TemporaryFile fifo;
    Descriptor input;
    Simulator simulator;
};

std::string NotUnderstood(const std::string& line)
{
    return "not understood: \"" + line + R"(" ("help" lists the commands))";
}

} // namespace

TEST(SimulatorControl, TakesAModuleToAState)
{
    ControlledSimulator simulator;

    simulator.Say("state pump1 failed\n", "pump1 is failed");
    EXPECT_EQ(RunTool({"--status=pump1"}), Done("pump1 is failed"));
    simulator.Say("state storage odd\n", "storage is odd");
    EXPECT_EQ(RunTool({"--status=storage"}), Done("storage is odd"));
    simulator.Say("state ghost failed\n", "unknown module \"ghost\"");
}

TEST(SimulatorControl, SwitchesDebugModeAndSafeMode)
{
    const std::string status = R"({"command":"engine-status"})";
    ControlledSimulator simulator;

    simulator.Say("debug on\n", "debug mode is on");
    EXPECT_NE(Ask(status).bytes.find(R"("debugModeEnabled":true)"), std::string::npos);
    simulator.Say("debug off\n", "debug mode is off");
    EXPECT_NE(Ask(status).bytes.find(R"("debugModeEnabled":false)"), std::string::npos);
    simulator.Say("safe-mode on\n", "safe mode is on");
    EXPECT_NE(Ask(status).bytes.find(R"("safeModeEnabled":true)"), std::string::npos);
    simulator.Say("safe-mode off\n", "safe mode is off");
    EXPECT_NE(Ask(status).bytes.find(R"("safeModeEnabled":false)"), std::string::npos);
}

TEST(SimulatorControl, ReplacesAllFaultsByOne)
{
    ControlledSimulator simulator({"--fault=close:list", "--fault=garbage:pid"});

    simulator.Say("fault wrong-type:pid@2\n", "fault wrong-type:pid@2");
    EXPECT_EQ(Ask(pidRequest), Answer{pidReply});
    EXPECT_EQ(Ask(pidRequest), Answer{"[" + pidReply + "]"});
    simulator.Say("fault garbage\n", "fault garbage");
    EXPECT_EQ(Ask(pidRequest), Answer{"This is not JSON"});
    simulator.Say("fault none\n", "no fault");
    EXPECT_EQ(Ask(pidRequest), Answer{pidReply});
}

TEST(SimulatorControl, KeepsTheFaultsIfTheNewOneIsWrong)
{
    ControlledSimulator simulator({"--fault=garbage"});

    simulator.Say("fault fire\n", R"(unknown fault "fire" (--help lists them))");
    simulator.Say("fault half:dance\n", R"(fault "half:dance": unknown command "dance")");

    EXPECT_EQ(Ask(pidRequest), Answer{"This is not JSON"});
}

TEST(SimulatorControl, MayAcceptNobodyForAWhile)
{
    ShortenConnectTimeout();
    ControlledSimulator simulator;

    simulator.Say("fault no-accept\n", "fault no-accept");
    EXPECT_EQ(RunTool({"--pid=pump1"}), (Outcome{69, noAnswer, ""}));
    simulator.Say("fault none\n", "no fault");
    EXPECT_EQ(RunTool({"--pid=pump1"}), Done("1004"));
}

TEST(SimulatorControl, IsDownForAWhile)
{
    ControlledSimulator simulator({"--fault=silent"});
    Client served;
    served.Send(pidRequest);
    simulator.Get().AwaitLog("[silent]");

    simulator.Say("down 86400\n", "down for 86400 seconds");
    EXPECT_THROW(Client(), std::system_error);
    simulator.Say("fault garbage\n", "fault garbage");
    EXPECT_THROW(Client(), std::system_error);
    EXPECT_FALSE(served.HearsWithin(std::chrono::milliseconds(0)));
    simulator.Say("down 0.5\n", "down for 0.5 seconds\nvantrel-sim: listening on 127.0.0.1:7777");
    EXPECT_EQ(Ask(pidRequest), Answer{"This is not JSON"});
}

TEST(SimulatorControl, EndsIfItCannotListenAgain)
{
    ControlledSimulator simulator;
    simulator.Say("down 86400\n", "down for 86400 seconds");
    const Simulator other;

    simulator.Say("down 0\n", "down for 0 seconds");

    EXPECT_EQ(simulator.Get().End(0).status, 69);
}

TEST(SimulatorControl, ListsItsCommands)
{
    ControlledSimulator simulator;

    simulator.Say("help\n", "state NAME STATE, debug on|off, safe-mode on|off, "
                            "fault NAME[:COMMAND][@N]|none, down SECONDS, help");
}

TEST(SimulatorControl, ChangesNothingForALineThatIsNotUnderstood)
{
    ControlledSimulator simulator;

    for (const std::string line :
         {"dance", "state pump1", "state pump1 failed now", "debug maybe", "debug", "safe-mode ON",
          "fault", "down", "down -1", "down soon", "down 86401", "help me", "STATE pump1 failed"}) {
        simulator.Say(line + "\n", NotUnderstood(line));
    }

    EXPECT_EQ(RunTool({"--status=pump1"}), Done("pump1 is running"));
}

TEST(SimulatorControl, TakesLinesInPiecesAndSeveralAtOnce)
{
    ControlledSimulator simulator;

    simulator.Say("\n  debug \t on \r\n\nstate pump1 odd\nsta", "pump1 is odd");
    simulator.Say("te pump2 odd\n", "pump2 is odd");
    simulator.Say("\033[31m\n", NotUnderstood("?[31m"));
}

TEST(SimulatorControl, GoesOnAfterTheEndOfItsInput)
{
    ControlledSimulator simulator;

    simulator.Say("state pump1 odd\nstate pump2 last", "pump1 is odd");
    simulator.EndInput();
    simulator.Get().AwaitLog("control: pump2 is last\n");

    EXPECT_EQ(Ask(pidRequest).bytes,
              Refusal(4, R"(pump1 has no process: its state is \"odd\")").bytes);
    EXPECT_EQ(simulator.Get().End().status, 0);
}

TEST(SimulatorControl, IsNotGivenNextToACommand)
{
    EXPECT_EQ(Simulator({"--control", "--", "true"}).End(),
              Refused(64, "--control and a command cannot share standard input"));
}
