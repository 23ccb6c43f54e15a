// The clocks of servers that drift, stop, begin anew and lie.

#include <gtest/gtest.h>

#include "SoundClock.h"
#include "Timeline.h"

namespace {

using namespace receiver;
using namespace std::chrono_literals;

constexpr int64_t kPoll = 16'667;
constexpr int64_t kStart = 5'000'000'000;

/// What a server's sound clock says: it is off, runs fast, and blocks of 10 ms come late.
int64_t sound_clock(int64_t time) {
    return time + 70'000 + (time - kStart) / 5000 - time % 10'000;
}

TEST(SoundClock, FollowsTheMachineThoughTheSoundRunsFast) {
    SoundClock clock;
    int64_t count = 0;
    for (int64_t time = kStart; time < kStart + 600'000'000; time += kPoll, ++count) {
        // Now and then the time stamp is old when the sound is taken, since a whole frame took long to
        // encode.
        const int64_t old = count % 20 == 7 ? 40'000 : 0;
        const int64_t heard = time - time % 10'000;
        ASSERT_LT(std::abs(clock.End(sound_clock(time), time - old) - heard), 10'000) << count;
    }
}

TEST(SoundClock, KnowsWhatAServerLostWhileNobodyAsked) {
    SoundClock clock;
    int64_t time = kStart;
    for (; time < kStart + 3'000'000; time += kPoll)
        clock.End(time, time);
    // Three seconds later come the first one of them and then what is new, by a clock that counts samples.
    EXPECT_EQ(clock.End(time + 1'000'000, time + 3'000'000), time + 1'000'000);
    EXPECT_EQ(clock.End(time + 1'000'000 + kPoll, time + 3'000'000 + kPoll), time + 3'000'000 + kPoll);
    clock.Reset();
    EXPECT_EQ(clock.End(7, time), time) << "its clock has begun anew";
}

TEST(SoundClock, IsNeverFarAheadOfItsReplyWhateverAServerSays) {
    constexpr int64_t kMost = int64_t{1} << 60; // As replies are read.
    SoundClock clock;
    for (const int64_t sound : {kMost, -kMost, int64_t{0}, kMost, int64_t{1}})
        for (const int64_t reply : {-kMost, int64_t{0}, kStart, kMost})
            EXPECT_LE(clock.End(sound, reply), reply + 100'000);
}

TEST(Timeline, GoesOnWhenTheServerIsAwayAndJoinsOnToANewOne) {
    Timeline timeline;
    const Timeline::Clock::time_point begin{1h};
    timeline.Note(kStart, begin, false);
    timeline.StartAt(kStart - 5'000);
    EXPECT_EQ(timeline.At(kStart), 5'000);
    timeline.Note(kStart + 1'000'000, begin + 1'020ms, false);
    EXPECT_EQ(timeline.At(kStart + 1'000'000), 1'005'000)
        << "the server's clock counts, not the network's delay";
    EXPECT_EQ(timeline.Now(begin + 4'020ms), 4'005'000);
    timeline.Note(300, begin + 4'020ms, true);
    EXPECT_EQ(timeline.At(300), 4'005'000) << "another run of the server, another clock";
    timeline.Note(int64_t{1} << 60, begin + 5'020ms, false);
    EXPECT_EQ(timeline.Now(begin + 5'020ms), 5'005'000) << "a clock that jumps makes no hours of silence";
}

TEST(Timeline, IsNeverFarAheadOfThisMachineWhateverAServerSays) {
    Timeline timeline;
    const Timeline::Clock::time_point begin{1h};
    timeline.Note(kStart, begin, false);
    timeline.Note(kStart, begin + 3s, false); // This one was late by 3 s,
    timeline.Note(kStart + 3'020'000, begin + 3020ms, false);
    EXPECT_EQ(timeline.At(kStart + 3'020'000), 3'020'000) << "which loses no time";
    for (int64_t step = 1; step <= 1000; ++step) {
        const auto now = begin + 4s + step * 16ms;
        timeline.Note(kStart + 4'000'000 + step * 9'900'000, now, false);
        ASSERT_LT(timeline.Now(now), 4'000'000 + step * 16'000 + 200'000);
    }
    timeline.Note(kStart, begin + 1h, false);
    timeline.Note(kStart, begin + 2h, false);
    EXPECT_GT(timeline.Now(begin + 2h), 7'150'000'000) << "nor far behind, though its clock stands still";
}

} // namespace
