#pragma once

#include <atomic>
#include <chrono>

namespace receiver {

/// Says once that it is time to stop, and cuts waits short.
class Interruption {
  public:
    using Clock = std::chrono::steady_clock;

    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    /// Any thread, and signal handlers.
    void Raise();
    bool IsRaised() const { return fIsRaised.load(std::memory_order_relaxed); }

    /// Waits until then. False as soon as it is raised. Any number of threads.
    bool WaitUntil(Clock::time_point time) const;

  private:
    std::atomic<bool> fIsRaised = false;
    int fEvent; ///< Can be read once it is raised.
};

} // namespace receiver
