#pragma once

#include <algorithm>
#include <chrono>
#include <ctime>

/// Keeps the pace of 60 polls a second; a beat that was missed is not made up for.
class Pace {
  public:
    static constexpr std::chrono::nanoseconds kInterval{16'666'667};

    void Wait() {
        fNext = std::max(fNext + kInterval, std::chrono::steady_clock::now());
        WaitUntil(fNext);
    }
    /// The part of the interval from the beat on.
    void WaitFor(double part) {
        WaitUntil(fNext + std::chrono::duration_cast<std::chrono::steady_clock::duration>(part * kInterval));
    }

  private:
    static void WaitUntil(std::chrono::steady_clock::time_point time) {
        const auto since = time.time_since_epoch();
        const timespec until{std::chrono::duration_cast<std::chrono::seconds>(since).count(),
                             std::chrono::nanoseconds(since).count() % 1'000'000'000};
        clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, nullptr);
    }

    std::chrono::steady_clock::time_point fNext = std::chrono::steady_clock::now();
};
