#include "PosixRunLoop.h"

#include <chrono>
#include <thread>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

/// A pipe whose reading end is what a loop watches.
class Pipe {
  public:
    Pipe() { EXPECT_EQ(pipe(fEnds), 0); }
    ~Pipe() {
        close(fEnds[0]);
        close(fEnds[1]);
    }
    int Reader() const { return fEnds[0]; }
    void Write() { EXPECT_EQ(write(fEnds[1], "x", 1), 1); }
    void Take() {
        char byte;
        EXPECT_EQ(read(fEnds[0], &byte, 1), 1);
    }

  private:
    int fEnds[2] = {-1, -1};
};

TEST(PosixRunLoop, ReturnsAtOnceAfterAStopThatCameFirst) {
    host::PosixRunLoop loop;
    loop.Stop();
    loop.Stop();
    loop.Run();

    // Both stops ended that one run: the next one runs until it is stopped again.
    Pipe pipe;
    bool called = false;
    loop.AddDescriptor(pipe.Reader(), [&] {
        called = true;
        loop.Stop();
        pipe.Take();
    });
    pipe.Write();
    loop.Run();
    EXPECT_TRUE(called);
}

TEST(PosixRunLoop, LetsACallRemoveItselfAndOthers) {
    host::PosixRunLoop loop;
    Pipe first;
    Pipe second;
    Pipe last;
    int firstCalls = 0;
    int secondCalls = 0;
    // Both are ready in the same round; whoever is called first takes both away.
    const auto remove_both = [&](int& calls) {
        ++calls;
        loop.RemoveDescriptor(first.Reader());
        loop.RemoveDescriptor(second.Reader());
        loop.RemoveDescriptor(12345);
        last.Write();
    };
    loop.AddDescriptor(first.Reader(), [&] { remove_both(firstCalls); });
    loop.AddDescriptor(second.Reader(), [&] { remove_both(secondCalls); });
    loop.AddDescriptor(last.Reader(), [&] { loop.Stop(); });
    first.Write();
    second.Write();
    loop.Run();
    EXPECT_EQ(firstCalls + secondCalls, 1);
}

TEST(PosixRunLoop, FiresTimersUntilTheyAreRemoved) {
    host::PosixRunLoop loop;
    int single = 0;
    int threefold = 0;
    int once = 0;
    int thrice = 0;
    once = loop.AddTimer(1, [&] {
        ++single;
        loop.RemoveTimer(once);
        loop.RemoveTimer(12345);
    });
    thrice = loop.AddTimer(2, [&] {
        if (++threefold < 3)
            return;
        loop.RemoveTimer(thrice);
        loop.AddTimer(60, [&] { loop.Stop(); });
    });
    const auto start = std::chrono::steady_clock::now();
    loop.Run();
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(60));
    EXPECT_EQ(single, 1);
    EXPECT_EQ(threefold, 3);
}

TEST(PosixRunLoop, PerformsOtherThreadsWorkUntilItRefuses) {
    host::PosixRunLoop loop;
    const std::thread::id mainThread = std::this_thread::get_id();
    int performed = 0;
    const auto work = [&] { performed += std::this_thread::get_id() == mainThread; };
    EXPECT_TRUE(loop.PerformOnMainThread(work)) << "a plain call on the main thread";

    std::vector<std::thread> others;
    for (int i = 0; i < 4; ++i)
        others.emplace_back([&] {
            for (int n = 0; n < 50; ++n)
                EXPECT_TRUE(loop.PerformOnMainThread(work));
            EXPECT_TRUE(loop.PerformOnMainThread([&] {
                if (++performed == 1 + 4 * 51)
                    loop.Stop();
            }));
        });
    loop.Run();
    for (std::thread& other : others)
        other.join();
    EXPECT_EQ(performed, 1 + 4 * 51);

    // No loop runs: only the refusal lets the waiting thread go.
    std::thread waiting([&] { EXPECT_FALSE(loop.PerformOnMainThread(work)); });
    loop.RefuseWork();
    waiting.join();
    EXPECT_EQ(performed, 1 + 4 * 51);
}

} // namespace
