#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace receiver {

/// Tells when sound was heard, by the clock of the server's machine. Takes any times that a StreamReply has.
///
/// A server's sound clock counts samples. It runs at the speed of the sound hardware, loses a fraction of a
/// microsecond with each reply, and knows nothing of what a slow receiver made the server lose. But the sound
/// of a reply was heard just before the reply was made: the median of that ties the one clock to the other,
/// though single sounds come late and single replies take their time.
class SoundClock {
  public:
    /// When the last sample of a reply was heard, from the reply's time stamps for it and for itself, all in
    /// microseconds. Never much later than the reply.
    int64_t End(int64_t soundTime, int64_t replyTime);

    /// After a reply without sound, whose clock then begins anew.
    void Reset() { fCount = 0; }

  private:
    /// Of sound that servers keep for a receiver that is away; what came later is lost.
    static constexpr int64_t kKept = 1'000'000;
    /// A server takes its time stamp, then encodes the pictures, and then asks for the sound.
    static constexpr int64_t kLongestEncoding = 100'000;

    int64_t median() const;

    std::array<int64_t, 64> fLeads{}; ///< Of the sound clock, in the last replies.
    size_t fCount = 0;
    int64_t fLastReply = 0;
};

} // namespace receiver
