#include <atomic>
#include <chrono>
#include <semaphore>
#include <tuple>

#include <gtest/gtest.h>

#include "Await.h"
#include "vnSignalThread.h"

namespace {

/// Counts its ticks; each takes a while, unless the test has given a leave for it.
class CountingWorker : public vnSignalThread {
  public:
    ~CountingWorker() override { SignalThread_Stop(); }
    void SignalThread_Tick() override {
        ++ticks;
        std::ignore = leaves.try_acquire_for(std::chrono::milliseconds(100));
    }

    std::atomic<int> ticks = 0;
    std::counting_semaphore<> leaves{0};
};

TEST(SignalThread, RunsOneTickForEachSignalEvenDuringATick) {
    CountingWorker worker;
    ASSERT_NE(worker.SignalThread_Start(), nullptr);
    worker.SignalThread_Signal();
    ASSERT_TRUE(Await([&] { return worker.ticks == 1; }));
    worker.SignalThread_Signal();
    worker.SignalThread_Signal();
    worker.leaves.release(10);
    EXPECT_TRUE(Await([&] { return worker.ticks == 3; }));
    worker.SignalThread_Stop();
    EXPECT_EQ(worker.ticks, 3);
}

TEST(SignalThread, AStoppedWorkerDoesNotTickAtOnceWhenItStartsAgain) {
    CountingWorker worker;
    worker.SignalThread_Start();
    worker.SignalThread_Signal();
    ASSERT_TRUE(Await([&] { return worker.ticks == 1; }));
    worker.SignalThread_Stop(); // Is to find the worker busy; any order gives the same result.
    worker.SignalThread_Stop(); // May be repeated.
    worker.leaves.release(10);

    worker.SignalThread_Start();
    worker.SignalThread_Signal();
    ASSERT_TRUE(Await([&] { return worker.ticks == 2; }));
    worker.SignalThread_Stop();
    EXPECT_EQ(worker.ticks, 2);
}

} // namespace
