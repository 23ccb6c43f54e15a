#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace receiver {

/// The last two seconds of sound, for any number of readers at their own pace: who is late misses some. Its
/// owner guards it.
class SoundRing {
  public:
    static constexpr int kRate = 44100;
    static constexpr int kChannels = 2;
    static constexpr size_t kFrameBytes = kChannels * 2; ///< Signed 16-bit little-endian, interleaved.
    static constexpr size_t kFrames = 2 * kRate;

    /// Adds whole sample frames.
    void Append(std::span<const uint8_t> samples);

    /// Sample frames so far: the place behind the newest.
    uint64_t End() const { return fEnd; }

    /// Hands out what came since that place, as far as it is still there, and moves it to the end.
    void Read(uint64_t& place, std::vector<uint8_t>& out) const;

  private:
    std::vector<uint8_t> fBytes = std::vector<uint8_t>(kFrames * kFrameBytes);
    uint64_t fEnd = 0;
};

} // namespace receiver
