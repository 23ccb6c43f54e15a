// A receiver that follows the test card for a long time.

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <unistd.h>

#include "LocalProgram.h"
#include "TestClient.h"

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

long resident_kilobytes() {
    long whole = 0;
    long pages = 0;
    std::ifstream("/proc/self/statm") >> whole >> pages;
    return pages * (sysconf(_SC_PAGESIZE) / 1024);
}

long thread_count() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
}

/// A poll, which keeps nothing but the number for the next one. Empty when no reply came.
std::string Poll(TestClient& client, const std::string& number) {
    constexpr std::string_view kNext = "next_sequence_id=\"";
    const auto reply =
        client.Call("SnapshotByDiffsWithAudio",
                    "<params><param><value><struct><member><name>sequence_id</name><value>"
                    "<string>" +
                        number + "</string></value></member></struct></value></param></params>");
    const size_t place = reply ? reply->body.find(kNext) : std::string::npos;
    if (place == std::string::npos)
        return {};
    const size_t start = place + kNext.size();
    return reply->body.substr(start, reply->body.find('"', start) - start);
}

TEST(Soak, MemoryStaysFlatAndNoThreadIsLeft) {
    std::thread([] {}).join(); // With the first one, a sanitizer starts a thread of its own.
    const long threadsBefore = thread_count();
    auto program = std::make_unique<LocalProgram>("");
    long settled = 0;
    long largest = 0;
    int polls = 0;
    program->Serve([&] {
        TestClient client(program->Port());
        std::string next = "0";
        const auto start = Clock::now();
        while (Clock::now() < start + duration()) {
            next = Poll(client, next);
            ASSERT_NE(next, "") << "poll " << polls;
            ++polls;
            std::this_thread::sleep_for(16ms);
            if (Clock::now() < start + kSettling)
                settled = std::max(settled, resident_kilobytes());
            else
                largest = std::max(largest, resident_kilobytes());
        }
    });
    printf("%d polls, %ld kB after the first minute, at most %ld kB later\n", polls, settled, largest);
    if (kMemoryTells) {
        EXPECT_LE(largest, settled + kFlatKilobytes);
    }

    EXPECT_GT(thread_count(), threadsBefore);
    program.reset();
    // A thread that was joined may show for a moment longer.
    for (const auto bound = Clock::now() + 10s; thread_count() > threadsBefore && Clock::now() < bound;)
        std::this_thread::sleep_for(1ms);
    EXPECT_EQ(thread_count(), threadsBefore);
}

} // namespace
