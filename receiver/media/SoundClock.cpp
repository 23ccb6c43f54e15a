#include "SoundClock.h"

#include <algorithm>

namespace receiver {

int64_t SoundClock::End(int64_t soundTime, int64_t replyTime) {
    const bool wasAway = fCount > 0 && replyTime - fLastReply > kKept;
    fLastReply = replyTime;
    if (!wasAway)
        fLeads[fCount++ % fLeads.size()] = soundTime - replyTime;
    const int64_t heard = soundTime - median();
    // This sound joins on to what came before; after it something is missing that its clock doesn't count.
    if (wasAway)
        Reset();
    return std::min(heard, replyTime + kLongestEncoding);
}

int64_t SoundClock::median() const {
    auto leads = fLeads;
    const auto end = leads.begin() + static_cast<ptrdiff_t>(std::min(fCount, leads.size()));
    const auto middle = leads.begin() + (end - leads.begin()) / 2;
    std::nth_element(leads.begin(), middle, end);
    return *middle;
}

} // namespace receiver
