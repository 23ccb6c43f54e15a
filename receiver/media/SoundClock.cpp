#include "SoundClock.h"

#include <algorithm>

namespace receiver {

int64_t SoundClock::End(int64_t soundTime, int64_t replyTime) {
    const int64_t lead = soundTime - replyTime;
    const bool wasAway = fBest && replyTime - fLastReply > kKept;
    if (!fBest) {
        fBest = fBestBefore = lead;
        fWindowStart = replyTime;
    } else if (replyTime - fWindowStart >= kWindow || replyTime < fWindowStart) {
        fBestBefore = *fBest;
        fBest = lead;
        fWindowStart = replyTime;
    }
    fBest = std::max(*fBest, lead);
    fLastReply = replyTime;
    const int64_t heard = soundTime - std::max(*fBest, fBestBefore);
    // This sound joins on to what came before; after it something is missing that its clock doesn't count.
    if (wasAway)
        Reset();
    return heard;
}

} // namespace receiver
