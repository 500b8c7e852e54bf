// The commands that need debug mode, and how the tool asks for it.

#include "tests/support/ScriptedEngine.h"
#include "tests/support/Tool.h"
#include "tests/tool/Texts.h"

#include <gtest/gtest.h>

namespace {

class GatedCommand: public testing::TestWithParam<const char*>
{
};

} // namespace

TEST_P(GatedCommand, IsNotSentWhileDebugModeIsOffAndEndsWithSuccess)
{
    ScriptedEngine engine{debugModeOff, accepted};

    EXPECT_EQ(RunTool({std::string("--") + GetParam(), "abc"}), (Outcome{0, debugModeIsOff, ""}));

    EXPECT_EQ(engine.Requests(), std::vector<std::string>{engineStatusRequest});
}

INSTANTIATE_TEST_SUITE_P(DebugMode, GatedCommand,
                         testing::Values("start", "stop", "restart", "monitor", "reconfigure"),
                         [](const auto& command) { return std::string(command.param); });

TEST(DebugMode, AloneOpensTheGateWhateverTheResultCodeAndTheSafeMode)
{
    ScriptedEngine engine{R"({"debugModeEnabled":true,"safeModeEnabled":true,"resultCode":99})",
                          refused};

    EXPECT_EQ(RunTool(Words("--start abc")), (Outcome{3, "no\n", ""}));

    EXPECT_EQ(
        engine.Requests(),
        (std::vector<std::string>{engineStatusRequest, R"({"command":"start","module":"abc"})"}));
}

TEST(DebugMode, IsAskedForAgainBeforeTheNextCommand)
{
    ScriptedEngine engine{debugModeOn, accepted, debugModeOff};

    EXPECT_EQ(RunTool(Words("--start abc")), (Outcome{0, "ok\n", ""}));
    EXPECT_EQ(RunTool(Words("--start abc")), (Outcome{0, debugModeIsOff, ""}));
}
