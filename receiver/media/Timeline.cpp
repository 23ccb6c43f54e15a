#include "Timeline.h"

#include <cstdlib>

namespace receiver {

void Timeline::Note(int64_t serverTime, Clock::time_point now, bool isNewClock) {
    const int64_t expected = Now(now);
    if (!fHasNotes || isNewClock || std::abs(serverTime - fOrigin - expected) > kLargestJump)
        fOrigin = serverTime - expected;
    fHasNotes = true;
    fLast = serverTime - fOrigin;
    fLastHere = now;
}

void Timeline::StartAt(int64_t serverTime) {
    fLast += fOrigin - serverTime;
    fOrigin = serverTime;
}

int64_t Timeline::At(int64_t serverTime) const {
    return serverTime - fOrigin;
}

int64_t Timeline::Now(Clock::time_point now) const {
    if (!fHasNotes)
        return 0;
    return fLast + std::chrono::duration_cast<std::chrono::microseconds>(now - fLastHere).count();
}

} // namespace receiver
