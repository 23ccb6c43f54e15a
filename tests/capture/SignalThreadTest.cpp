#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include <gtest/gtest.h>

#include "vnSignalThread.h"

namespace {

using namespace std::chrono_literals;

/// Counts its ticks; each may be held until the test lets it go.
class CountingWorker : public vnSignalThread {
  public:
    ~CountingWorker() override { SignalThread_Stop(); }

    void SignalThread_Tick() override {
        std::unique_lock lock(fMutex);
        ++fTicks;
        fChanged.notify_all();
        fChanged.wait(lock, [this] { return !fHold; });
    }

    bool WaitForTicks(int count) {
        std::unique_lock lock(fMutex);
        return fChanged.wait_for(lock, 30s, [&] { return fTicks >= count; });
    }
    void Hold(bool hold) {
        std::lock_guard lock(fMutex);
        fHold = hold;
        fChanged.notify_all();
    }
    int Ticks() {
        std::lock_guard lock(fMutex);
        return fTicks;
    }

  private:
    std::mutex fMutex;
    std::condition_variable fChanged;
    int fTicks = 0;
    bool fHold = false;
};

TEST(SignalThread, RunsOneTickForEachSignalEvenDuringATick) {
    CountingWorker worker;
    worker.Hold(true);
    ASSERT_NE(worker.SignalThread_Start(), nullptr);
    worker.SignalThread_Signal();
    ASSERT_TRUE(worker.WaitForTicks(1));
    worker.SignalThread_Signal();
    worker.SignalThread_Signal();
    worker.Hold(false);
    EXPECT_TRUE(worker.WaitForTicks(3));
    worker.SignalThread_Stop();
    EXPECT_EQ(worker.Ticks(), 3);
}

TEST(SignalThread, AStoppedWorkerDoesNotTickAtOnceWhenItStartsAgain) {
    CountingWorker worker;
    worker.Hold(true);
    worker.SignalThread_Start();
    worker.SignalThread_Signal();
    ASSERT_TRUE(worker.WaitForTicks(1));
    std::thread release([&worker] {
        std::this_thread::sleep_for(
            50ms); // Stop is to find the worker busy; any order gives the same result.
        worker.Hold(false);
    });
    worker.SignalThread_Stop();
    release.join();

    worker.SignalThread_Start();
    worker.SignalThread_Signal();
    ASSERT_TRUE(worker.WaitForTicks(2));
    worker.SignalThread_Stop();
    worker.SignalThread_Stop(); // May be repeated.
    EXPECT_EQ(worker.Ticks(), 2);
}

} // namespace
