#include <gtest/gtest.h>

#include "TestFolder.h"
#include "zBoot.h"
#include "zTrace.h"

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    // A log of this process's own: test programs run side by side, and beside a real server.
    const TestFolder folder;
    zTrace::Initialize((folder.Path().filename() / "log.txt").c_str());
    zBoot::Startup();
    const int result = RUN_ALL_TESTS();
    zBoot::Shutdown();
    return result;
}
