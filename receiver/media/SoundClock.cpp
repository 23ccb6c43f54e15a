#include "SoundClock.h"

#include <algorithm>

namespace receiver {

namespace {

/// Keeps sums and differences in range.
int64_t sensible(int64_t time) {
    constexpr int64_t kLatest = int64_t{1} << 60;
    return std::clamp(time, -kLatest, kLatest);
}

} // namespace

int64_t SoundClock::End(int64_t soundTime, int64_t replyTime) {
    const int64_t end = sensible(soundTime);
    const int64_t reply = sensible(replyTime);
    const int64_t lead = end - reply;
    const bool wasAway = fBest && reply - fLastReply > kKept;
    if (!fBest) {
        fBest = fBestBefore = lead;
        fWindowStart = reply;
    } else if (reply - fWindowStart >= kWindow || reply < fWindowStart) {
        fBestBefore = *fBest;
        fBest = lead;
        fWindowStart = reply;
    }
    fBest = std::max(*fBest, lead);
    fLastReply = reply;
    const int64_t heard = end - std::max(*fBest, fBestBefore);
    // This sound joins on to what came before; after it something is missing that its clock doesn't count.
    if (wasAway)
        Reset();
    return heard;
}

} // namespace receiver
