#include "term/Styles.h"
#include "tests/support/Descriptor.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <sstream>

#include <fcntl.h>
#include <unistd.h>

TEST(Styles, LookAtTheStreamTheyAreAppliedTo)
{
    const Descriptor terminal(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
    ASSERT_EQ(grantpt(terminal.Get()), 0);
    ASSERT_EQ(unlockpt(terminal.Get()), 0);
    const Descriptor inTerminal(open(ptsname(terminal.Get()), O_RDWR | O_NOCTTY | O_CLOEXEC));
    const Descriptor null(open("/dev/null", O_RDWR | O_CLOEXEC));
    const Descriptor output(dup(STDOUT_FILENO));
    const Descriptor error(dup(STDERR_FILENO));
    useColors = true;

    dup2(inTerminal.Get(), STDOUT_FILENO);
    const bool onOutputBefore = IsStylingActive(std::cout);
    dup2(null.Get(), STDOUT_FILENO);
    dup2(inTerminal.Get(), STDERR_FILENO);
    const bool onOutput = IsStylingActive(std::cout);
    const bool onError = IsStylingActive(std::cerr);
    const bool onLog = IsStylingActive(std::clog);
    const bool onAnother = IsStylingActive(std::ostringstream());
    dup2(output.Get(), STDOUT_FILENO);
    dup2(error.Get(), STDERR_FILENO);

    EXPECT_TRUE(onOutputBefore);
    EXPECT_FALSE(onOutput) << "each use looks again";
    EXPECT_TRUE(onError);
    EXPECT_TRUE(onLog);
    EXPECT_FALSE(onAnother);
}
