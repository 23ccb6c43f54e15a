#pragma once

#include <chrono>
#include <cstdint>

namespace receiver {

/// Turns a server's clock into the time of a recording, in microseconds, and goes on by this machine's clock
/// while the server says nothing. Takes any times that a StreamReply has.
class Timeline {
  public:
    using Clock = std::chrono::steady_clock;

    /// Clocks that are further apart than this, in microseconds, have nothing to do with each other. More
    /// than a reply may take.
    static constexpr int64_t kLargestJump = 10'000'000;

    /// Notes what the server's clock said in a reply that came now. The first time is the recording's 0,
    /// until StartAt; a clock that has begun anew joins on where the time is. Replies may come late by up to
    /// the largest jump, but whatever they say, the time is never far ahead of this machine's clock.
    void Note(int64_t serverTime, Clock::time_point now, bool isNewClock);
    /// Makes that time of the server's clock 0.
    void StartAt(int64_t serverTime);

    /// The recording's time of a time of the server's clock.
    int64_t At(int64_t serverTime) const;
    /// The recording's time now; 0 before the first note.
    int64_t Now(Clock::time_point now) const;

  private:
    /// A first reply that was late makes the others look early by as much, in microseconds.
    static constexpr int64_t kLargestLead = 100'000;
    /// Clocks differ by less than this part of the time.
    static constexpr int64_t kDriftPart = 1000;

    bool fHasNotes = false;
    int64_t fOrigin = 0;         ///< On the server's clock.
    int64_t fLast = 0;           ///< The recording's time of the last note,
    Clock::time_point fLastHere; ///< and when it came.
    Clock::time_point fBegin;    ///< The recording's 0, by this machine's clock.
};

} // namespace receiver
