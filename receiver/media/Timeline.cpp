#include "Timeline.h"

#include <algorithm>
#include <cstdlib>

namespace receiver {

namespace {

/// Of a clock that makes sense; keeps sums and differences in range.
constexpr int64_t kLatest = int64_t{1} << 60;

int64_t sensible(int64_t serverTime) {
    return std::clamp(serverTime, -kLatest, kLatest);
}

} // namespace

void Timeline::Note(int64_t serverTime, Clock::time_point now, bool isNewClock) {
    const int64_t time = sensible(serverTime);
    const int64_t expected = Now(now);
    if (!fHasNotes || isNewClock || std::abs(time - fOrigin - expected) > kLargestJump)
        fOrigin = time - expected;
    fHasNotes = true;
    fLast = time - fOrigin;
    fLastHere = now;
}

void Timeline::StartAt(int64_t serverTime) {
    const int64_t origin = sensible(serverTime);
    fLast += fOrigin - origin;
    fOrigin = origin;
}

int64_t Timeline::At(int64_t serverTime) const {
    return sensible(serverTime) - fOrigin;
}

int64_t Timeline::Now(Clock::time_point now) const {
    if (!fHasNotes)
        return 0;
    return fLast + std::chrono::duration_cast<std::chrono::microseconds>(now - fLastHere).count();
}

} // namespace receiver
