// A receiver that follows the test card for a long time.

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <unistd.h>

#include "Daemon.h"
#include "StreamClient.h"

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

// A sanitizer keeps freed memory, and memory of its own.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kMemoryTells = false;
#else
constexpr bool kMemoryTells = true;
#endif

constexpr auto kSettling = 60s;
constexpr long kFlatKilobytes = 1024;

/// Ten minutes, unless the environment says otherwise.
std::chrono::seconds duration() {
    const char* seconds = std::getenv("GLASSPANE_SOAK_SECONDS");
    return std::chrono::seconds(seconds ? std::atoi(seconds) : 600);
}

long resident_kilobytes(int process) {
    long whole = 0;
    long pages = 0;
    std::ifstream("/proc/" + std::to_string(process) + "/statm") >> whole >> pages;
    return pages * (sysconf(_SC_PAGESIZE) / 1024);
}

TEST(Soak, MemoryStaysFlat) {
    Daemon daemon({"--host", "builtin"});
    StreamClient client(daemon.Port(), true);
    long settled = 0;
    long largest = 0;
    for (const auto start = Clock::now(); Clock::now() < start + duration();) {
        ASSERT_TRUE(client.Poll()) << "poll " << client.Polls();
        std::this_thread::sleep_for(16ms); // A receiver's pace.
        long& memory = Clock::now() < start + kSettling ? settled : largest;
        memory = std::max(memory, resident_kilobytes(daemon.Process().Pid()));
    }
    printf("%lu polls, %ld kB after the first minute, at most %ld kB later\n", client.Polls(), settled,
           largest);
    EXPECT_GT(settled, 0);
    if (kMemoryTells) {
        EXPECT_LE(largest, settled + kFlatKilobytes);
    }
    daemon.Process().Signal(SIGTERM);
    EXPECT_EQ(daemon.Process().WaitForExit(), 0);
}

} // namespace
