#include "tests/support/PrivateNetwork.h"

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    if (!testing::GTEST_FLAG(list_tests)) {
        ClaimEngineAddress();
    }
    return RUN_ALL_TESTS();
}
