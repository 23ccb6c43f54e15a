#include <gtest/gtest.h>

#include "zBoot.h"

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    zBoot::Startup();
    const int result = RUN_ALL_TESTS();
    zBoot::Shutdown();
    return result;
}
