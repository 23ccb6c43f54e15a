#pragma once

#include <chrono>
#include <memory>
#include <vector>

#include "MainThreadQueue.h"
#include "RunLoop.h"

namespace host {

/// A loop over poll(). Stop() writes a byte to a pipe that the loop watches: that is all a signal handler may
/// do.
class PosixRunLoop : public RunLoop {
  public:
    PosixRunLoop();
    ~PosixRunLoop() override;
    PosixRunLoop(const PosixRunLoop&) = delete;
    PosixRunLoop& operator=(const PosixRunLoop&) = delete;

    void Run() override;
    void Stop() override;
    void AddDescriptor(int descriptor, std::function<void()> ready) override;
    void RemoveDescriptor(int descriptor) override;
    int AddTimer(int milliseconds, std::function<void()> fire) override;
    void RemoveTimer(int timer) override;
    bool PerformOnMainThread(const std::function<void()>& work) override { return fQueue.Perform(work); }
    void RefuseWork() override { fQueue.Close(); }

  private:
    using Moment = std::chrono::steady_clock::time_point;

    /// Shared with the round that calls it, so that a call may remove its own source.
    struct Source {
        int descriptor;
        std::function<void()> ready;
        bool removed = false;
    };
    using SourceList = std::vector<std::shared_ptr<Source>>;

    /// Shared with the round that fires it, as a source is.
    struct Timer {
        int number;
        std::chrono::milliseconds period;
        Moment due;
        std::function<void()> fire;
        bool removed = false;
    };
    using TimerList = std::vector<std::shared_ptr<Timer>>;

    bool take_stop();
    bool wait(SourceList& readySources);
    int time_until_due() const;
    void fire_due_timers();

    int fStopReader = -1;
    int fStopWriter = -1;
    SourceList fSources;
    TimerList fTimers;
    int fLastTimer = 0;
    MainThreadQueue fQueue;
};

} // namespace host
