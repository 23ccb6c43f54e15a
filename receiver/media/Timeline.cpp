#include "Timeline.h"

#include <algorithm>
#include <cstdlib>

namespace receiver {

using std::chrono::duration_cast;
using std::chrono::microseconds;

void Timeline::Note(int64_t serverTime, Clock::time_point now, bool isNewClock) {
    const int64_t expected = Now(now);
    if (!fHasNotes || isNewClock || std::abs(serverTime - fOrigin - expected) > kLargestJump)
        fOrigin = serverTime - expected;
    if (!fHasNotes)
        fBegin = now;
    fHasNotes = true;
    const int64_t here = duration_cast<microseconds>(now - fBegin).count();
    const int64_t drift = here / kDriftPart;
    fLast = std::clamp(serverTime - fOrigin, here - drift - kLargestJump, here + drift + kLargestLead);
    fOrigin = serverTime - fLast;
    fLastHere = now;
}

void Timeline::StartAt(int64_t serverTime) {
    const int64_t before = fOrigin - serverTime;
    fLast += before;
    fBegin -= microseconds(before);
    fOrigin = serverTime;
}

int64_t Timeline::At(int64_t serverTime) const {
    return serverTime - fOrigin;
}

int64_t Timeline::Now(Clock::time_point now) const {
    if (!fHasNotes)
        return 0;
    return fLast + duration_cast<microseconds>(now - fLastHere).count();
}

} // namespace receiver
