// How debug mode opens the gate. Which commands are gated is in OptionsTest.cpp.

#include "tests/support/ScriptedEngine.h"
#include "tests/support/Tool.h"
#include "tests/tool/Texts.h"

#include <gtest/gtest.h>

TEST(DebugMode, ThatIsOffKeepsTheCommandFromBeingSentAndEndsWithSuccess)
{
    ScriptedEngine engine{debugModeOff, accepted};

    EXPECT_EQ(RunTool(Words("--start abc")), (Outcome{0, debugModeIsOff, ""}));

    EXPECT_EQ(engine.Requests(), std::vector<std::string>{engineStatusRequest});
}

TEST(DebugMode, AloneOpensTheGateWhateverTheResultCodeAndTheSafeMode)
{
    ScriptedEngine engine{R"({"debugModeEnabled":true,"safeModeEnabled":true,"resultCode":99})",
                          refused};

    EXPECT_EQ(RunTool(Words("--start abc")), (Outcome{3, "no\n", ""}));

    EXPECT_EQ(
        engine.Requests(),
        (std::vector<std::string>{engineStatusRequest, R"({"command":"start","module":"abc"})"}));
}
