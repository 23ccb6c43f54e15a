#pragma once

#include <cstdint>
#include <optional>

namespace receiver {

/// Tells when sound was heard, by the clock of the server's machine.
///
/// A server's sound clock counts samples. It runs at the speed of the sound hardware, loses a fraction of a
/// microsecond with each reply, and knows nothing of what a slow receiver made the server lose. But the
/// freshest sound of a few replies was heard as its reply was made: that ties it to the machine's clock.
/// Takes any times that a StreamReply has.
class SoundClock {
  public:
    /// When the last sample of a reply was heard, from the reply's time stamps for it and for itself, all in
    /// microseconds. Never later than the reply.
    int64_t End(int64_t soundTime, int64_t replyTime);

    /// After a reply without sound, whose clock then begins anew.
    void Reset() { fBest.reset(); }

  private:
    static constexpr int64_t kWindow = 1'000'000;
    /// Of sound that servers keep for a receiver that is away; what came later is lost.
    static constexpr int64_t kKept = 1'000'000;

    std::optional<int64_t> fBest; ///< The largest lead of the sound clock in this window,
    int64_t fBestBefore = 0;      ///< and in the one before.
    int64_t fWindowStart = 0;
    int64_t fLastReply = 0;
};

} // namespace receiver
