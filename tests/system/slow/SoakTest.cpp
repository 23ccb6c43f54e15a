// A receiver that follows the test card for a long time.

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <string>
#include <thread>
#include <vector>

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

constexpr auto kWindow = 20s;
constexpr long kFlatKilobytes = 4096;

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
    std::vector<long> lows; // Of each window: buffers come and go by tens of megabytes.
    const auto start = Clock::now();
    while (Clock::now() < start + duration()) {
        ASSERT_TRUE(client.Poll()) << "poll " << client.Polls();
        std::this_thread::sleep_for(16ms); // A receiver's pace.
        const auto window = static_cast<size_t>((Clock::now() - start) / kWindow);
        lows.resize(std::max(lows.size(), window + 1), std::numeric_limits<long>::max());
        lows[window] = std::min(lows[window], resident_kilobytes(daemon.Process().Pid()));
    }
    // The first window has the start in it, and the last one may be short.
    if (kMemoryTells && lows.size() > 3) {
        const long early = lows[1];
        const long late = lows[lows.size() - 2];
        printf("%lu polls, %ld kB early on, %ld kB in the end\n", client.Polls(), early, late);
        EXPECT_GT(early, 0);
        EXPECT_LE(late, early + kFlatKilobytes);
    }
    daemon.Process().Signal(SIGTERM);
    EXPECT_EQ(daemon.Process().WaitForExit(), 0);
}

} // namespace
