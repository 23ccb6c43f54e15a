#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "FunctionThread.h"
#include "zCritical.h"
#include "zRefCount.h"
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

/// Whether one of this process's threads has given itself that name, as its first act.
bool is_running(const std::string& name) {
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::string known;
        std::ifstream comm(task.path() / "comm");
        if (std::getline(comm, known) && known == name)
            return true;
    }
    return false;
}

TEST(Thread, FactoryWaitsForTheStartIfAsked) {
    const auto go = new_signal();
    for (int round = 0; round < 100; ++round) { // Without waiting it would be too early in most of them.
        const std::string name = "started " + std::to_string(round);
        const auto thread = StartThread([&go] { return go->Wait(), 0; }, zThread::kWaitForStart,
                                        zThread::kNormalPriority, name.c_str());
        ASSERT_TRUE(is_running(name));
        go->Signal();
        thread->WaitForExit();
    }
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

TEST(Signal, EachSignalIsOneTickWhoeverWaits) {
    constexpr int kThreads = 4, kTicks = 2000;
    const auto signal = new_signal();
    std::vector<std::unique_ptr<zThread>> threads;
    for (int i = 0; i < kThreads; ++i)
        threads.push_back(StartThread([&] {
            for (int tick = 0; tick < kTicks; ++tick)
                signal->Wait();
            return 0;
        }));
    for (int i = 0; i < kThreads * kTicks; ++i)
        signal->Signal();
    for (const auto& thread : threads)
        thread->WaitForExit();
    EXPECT_FALSE(signal->TakeBack());
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

TEST(RefCount, TheLastReleaseDeletes) {
    struct Counted : zRefCount {
        explicit Counted(bool& flag) : gone(flag) {}
        ~Counted() override { gone = true; }
        bool& gone;
    };
    bool gone = false;
    zRefPtr<Counted> object(new Counted(gone));
    object->AddRef();
    object->Release();
    EXPECT_FALSE(gone);
    object.reset();
    EXPECT_TRUE(gone);
}
