#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include <unistd.h>

#include "zBoot.h"
#include "zTrace.h"

namespace {

/// A log of this process's own: test programs run side by side, and beside a real server.
class PrivateLog {
  public:
    PrivateLog() {
        if (!mkdtemp(fFolder))
            std::abort();
        zTrace::Initialize((fFolder + sizeof "/tmp/" - 1 + std::string("/log.txt")).c_str());
    }
    ~PrivateLog() {
        unlink((std::string(fFolder) + "/log.txt").c_str());
        rmdir(fFolder);
    }

  private:
    char fFolder[32] = "/tmp/glasspane_test_XXXXXX";
};

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const PrivateLog log;
    zBoot::Startup();
    const int result = RUN_ALL_TESTS();
    zBoot::Shutdown();
    return result;
}
