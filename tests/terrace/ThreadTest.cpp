#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <set>
#include <thread>

#include "FunctionThread.h"
#include "zCritical.h"
#include "zSignal.h"

namespace {

std::unique_ptr<zSignal> new_signal() {
    return std::unique_ptr<zSignal>(zSignal::Factory());
}

} // namespace

TEST(Thread, RunsWithAnIdOfItsOwnAndGivesItsResult) {
    EXPECT_TRUE(zThread::IsCurrentThreadMain()) << "the boot ran on this thread";
    std::set<int> ids;
    for (char priority = 0; priority <= 7; ++priority) {
        const auto thread = StartThread(
            [&ids] {
                ids.insert(zThread::CurrentThreadID());
                return zThread::IsCurrentThreadMain() ? 1 : 42;
            },
            0, priority);
        EXPECT_EQ(thread->WaitForExit(), 42);
        EXPECT_EQ(thread->WaitForExit(), 42);
        EXPECT_EQ(ids.count(thread->ThreadID()), 1U);
    }
    EXPECT_EQ(ids.size(), 8U);
}

TEST(Thread, DeletesItselfAndItsBodyIfAsked) {
    const auto done = new_signal();
    struct Farewell {
        zSignal& signal;
        ~Farewell() { signal.Signal(); }
    };
    auto farewell = std::make_shared<Farewell>(*done);
    StartThread([farewell] { return 0; }, zThread::kDeleteThread).release();
    farewell.reset();
    done->Wait();
}

TEST(Signal, SignalsThatCameFirstAddUp) {
    const auto signal = new_signal();
    EXPECT_EQ(signal->Wait(1000), -1);
    for (int i = 0; i < 3; ++i)
        signal->Signal();
    signal->Wait();
    EXPECT_EQ(signal->Wait(1000), 0);
    EXPECT_TRUE(signal->TakeBack());
    EXPECT_FALSE(signal->TakeBack());
    EXPECT_EQ(signal->Wait(-5), -1);
}

// 999,999 microseconds and the part of a second of now pass one second but once in a million: no carry is
// made.
TEST(Signal, ADeadlineWhosePartsOfASecondAddUpToOneFailsAtOnce) {
    const auto signal = new_signal();
    const auto before = std::chrono::steady_clock::now();
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(signal->Wait(30'000'000 + 999'999), -1);
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(20));
}

TEST(Critical, IsRecursiveAndExcludesOthers) {
    const std::unique_ptr<zCritical> lock(zCritical::Factory(1));
    int count = 0;
    const auto raise = [&] {
        for (int i = 0; i < 2000; ++i) {
            const zAutoCritical outer(lock.get());
            const zAutoCritical inner(lock.get());
            ++count;
        }
    };
    { const std::jthread one(raise), two(raise); }
    EXPECT_EQ(count, 4000);
}
