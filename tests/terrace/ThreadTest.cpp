#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "zCritical.h"
#include "zRefCount.h"
#include "zSignal.h"
#include "zThread.h"

namespace {

/// A body made of a function.
class Body : public zThreadMain {
  public:
    explicit Body(std::function<int()> function) : fFunction(std::move(function)) {}
    int Main(int argc, const char** argv) override {
        EXPECT_EQ(argc, 0);
        EXPECT_EQ(argv, nullptr);
        return fFunction();
    }

  private:
    std::function<int()> fFunction;
};

std::unique_ptr<zThread> start(std::function<int()> function, char flags = 0,
                               char priority = zThread::kNormalPriority) {
    return std::unique_ptr<zThread>(zThread::Factory(
        "test", new Body(std::move(function)), static_cast<char>(flags | zThread::kDeleteMain), priority));
}

std::unique_ptr<zSignal> new_signal() {
    return std::unique_ptr<zSignal>(zSignal::Factory());
}

} // namespace

TEST(Thread, RunsWithAnIdOfItsOwnAndGivesItsResult) {
    EXPECT_TRUE(zThread::IsCurrentThreadMain()) << "the boot ran on this thread";
    int seen = 0;
    const auto thread = start([&seen] {
        seen = zThread::CurrentThreadID();
        return zThread::IsCurrentThreadMain() ? 1 : 42;
    });
    EXPECT_EQ(thread->WaitForExit(), 42);
    EXPECT_EQ(thread->WaitForExit(), 42);
    EXPECT_EQ(seen, thread->ThreadID());
    int foreign = 0;
    std::thread([&foreign] { foreign = zThread::CurrentThreadID(); }).join();
    EXPECT_GT(foreign, seen);
}

/// Whether one of this process's threads has given itself that name, as its first act.
bool is_named(const std::string& name) {
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
        const std::unique_ptr<zThread> thread(
            zThread::Factory(name.c_str(), new Body([&go] { return go->Wait(), 0; }),
                             zThread::kWaitForStart | zThread::kDeleteMain, zThread::kNormalPriority));
        ASSERT_TRUE(is_named(name)) << "round " << round;
        go->Signal();
        EXPECT_EQ(thread->WaitForExit(), 0);
    }
}

TEST(Thread, DeletesItselfAndItsBodyIfAsked) {
    const auto done = new_signal();
    struct Farewell {
        zSignal& signal;
        ~Farewell() { signal.Signal(); }
    };
    auto farewell = std::make_shared<Farewell>(*done);
    start([farewell] { return 0; }, zThread::kDeleteThread).release();
    farewell.reset();
    done->Wait();
}

TEST(Thread, AnyPriorityRuns) {
    for (char priority = 0; priority <= 7; ++priority)
        EXPECT_EQ(start([] { return 5; }, 0, priority)->WaitForExit(), 5);
    zThread* none = zThread::Factory(nullptr, nullptr, 0, zThread::kNormalPriority);
    EXPECT_EQ(none->WaitForExit(), -1) << "no body";
    delete none;
}

TEST(Signal, SignalsThatCameFirstAddUp) {
    const auto signal = new_signal();
    for (int i = 0; i < 3; ++i)
        signal->Signal();
    for (int i = 0; i < 3; ++i)
        signal->Wait();
    EXPECT_FALSE(signal->TakeBack());
    signal->Signal();
    EXPECT_TRUE(signal->TakeBack());
    EXPECT_EQ(signal->Wait(1), -1);
}

TEST(Signal, TimeOutLeavesTheCountAsItWas) {
    const auto signal = new_signal();
    EXPECT_EQ(signal->Wait(1000), -1);
    signal->Signal();
    EXPECT_EQ(signal->Wait(1000), 0);
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
    std::atomic<int> ticks{0};
    std::vector<std::unique_ptr<zThread>> threads;
    for (int i = 0; i < kThreads; ++i)
        threads.push_back(start([&] {
            for (int tick = 0; tick < kTicks; ++tick) {
                signal->Wait();
                ++ticks;
            }
            return 0;
        }));
    for (int i = 0; i < kThreads * kTicks; ++i)
        signal->Signal();
    for (const auto& thread : threads)
        thread->WaitForExit();
    EXPECT_EQ(ticks, kThreads * kTicks);
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
        return 0;
    };
    const auto one = start(raise);
    const auto two = start(raise);
    one->WaitForExit();
    two->WaitForExit();
    EXPECT_EQ(count, 4000);
    const zAutoCritical none(nullptr);
}

TEST(RefCount, TheLastReleaseDeletes) {
    struct Counted : zRefCount {
        explicit Counted(bool& flag) : gone(flag) {}
        ~Counted() override { gone = true; }
        bool& gone;
    };
    bool gone = false;
    auto* object = new Counted(gone);
    EXPECT_EQ(object->AddRef(), 2);
    EXPECT_EQ(object->Release(), 1);
    EXPECT_FALSE(gone);
    zRefPtr<Counted>(object).reset();
    EXPECT_TRUE(gone);
}
