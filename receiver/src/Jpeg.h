#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace receiver {

/// Encodes upright pictures, and turns those that travel upside down. One thread.
class JpegEncoder {
  public:
    JpegEncoder();
    ~JpegEncoder();
    JpegEncoder(const JpegEncoder&) = delete;
    JpegEncoder& operator=(const JpegEncoder&) = delete;

    /// Encodes b, g, r, x pixels, top row first, at a quality from 1 to 100; from 90 on with full colour
    /// resolution. False without memory.
    bool Encode(const uint8_t* pixels, int width, int height, int rowBytes, int quality,
                std::vector<uint8_t>& out);

    /// Turns a JPEG upside down without decoding its pixels, so nothing is lost. False if that can't be done
    /// to the last row: when its height is no multiple of its blocks', or it is none.
    bool Flip(std::span<const uint8_t> jpeg, std::vector<uint8_t>& out);

  private:
    void* fEncoder; ///< Of TurboJPEG, as the other.
    void* fTransformer;
};

} // namespace receiver
