#pragma once

#include <array>
#include <chrono>
#include <cstdint>

namespace receiver {

/// Counts durations in steps of a few per cent, from 10 microseconds to minutes, in constant memory.
class Histogram {
  public:
    void Add(double milliseconds);
    uint64_t Count() const { return fCount; }
    /// The duration in milliseconds that this part of all, 0 to 1, stayed within; 0 without any.
    double Percentile(double part) const;
    double Largest() const { return fLargest; }

  private:
    std::array<uint32_t, 512> fCounts{};
    uint64_t fCount = 0;
    double fLargest = 0;
};

/// How fast one clock runs against another, from pairs of readings whose second is late by a varying delay:
/// of each few seconds the pair with the least delay counts.
class ClockDrift {
  public:
    /// Both in microseconds.
    void Add(int64_t clock, int64_t reference);
    /// Parts per million that the clock is fast; 0 until there is enough to tell.
    double PartsPerMillion() const;

  private:
    struct Pair {
        int64_t reference = 0;
        int64_t lead = 0; ///< Of the clock.
    };

    static constexpr int64_t kWindow = 5'000'000;

    Pair fFirst; ///< The best of the first window.
    Pair fLast;  ///< The best of the last whole window.
    Pair fBest;  ///< The best of the current one, if it has any.
    int64_t fWindowStart = 0;
    int fCount = 0;   ///< Of pairs in the current window.
    int fWindows = 0; ///< Whole ones.
};

/// What a stream has been like since Reset.
struct Figures {
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
    uint64_t polls = 0; ///< That were answered.
    uint64_t wholeFrames = 0;
    uint64_t changes = 0; ///< Replies with changed regions.
    uint64_t regions = 0; ///< In them.
    uint64_t mutedPolls = 0;
    uint64_t bytes = 0;
    uint64_t soundFrames = 0;
    uint64_t failures = 0; ///< Calls without a useful reply.
    Histogram delay;       ///< From a call to its reply's last byte, in milliseconds.
    Histogram composing;   ///< Decoding and drawing of a reply with pictures.

    double Seconds() const {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    }
};

} // namespace receiver
