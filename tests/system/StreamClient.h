#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "Stream.h"

/// The receiver's stream as fast as replies come, at the best quality, with an eye on what tests look at.
class StreamClient {
  public:
    explicit StreamClient(uint16_t port, bool withSound = false, double timeoutSeconds = 30)
        : fStream(settings(port, withSound, timeoutSeconds), nullptr) {}

    /// One call. False when there is no reply or it makes no sense.
    bool Poll() {
        ++fPolls;
        const auto event = fStream.Poll();
        if (const auto* sound = fStream.Sound()) {
            const size_t before = fSound.size();
            fSound.resize(before + sound->samples.size() / sizeof(int16_t));
            std::memcpy(fSound.data() + before, sound->samples.data(), sound->samples.size());
        }
        return event != receiver::Stream::Event::kFailed;
    }

    /// The last reply.
    const receiver::StreamReply& Last() const { return fStream.Last(); }
    /// Where the canvas lies on the screen.
    const zRect& Frame() const { return fStream.Picture().Frame(); }
    uint64_t Polls() const { return fPolls; }
    /// Replies with changed regions.
    uint64_t DiffReplies() const { return fStream.Measured().changes; }
    uint64_t WholeFrames() const { return fStream.Measured().wholeFrames; }
    /// All sound so far.
    const std::vector<int16_t>& Sound() const { return fSound; }

    /// The largest difference of a channel between the canvas and 0xRRGGBB; 255 outside of the canvas.
    int Difference(int x, int y, uint32_t colour) const {
        const receiver::Canvas& canvas = fStream.Picture();
        if (canvas.IsEmpty() || x >= canvas.Width() || y >= canvas.Height())
            return 255;
        const uint8_t* pixel = canvas.Row(y) + static_cast<ptrdiff_t>(x) * receiver::Canvas::kPixelBytes;
        int largest = 0;
        for (int i = 0; i < 3; ++i)
            largest = std::max(largest, std::abs(pixel[i] - static_cast<int>(colour >> (8 * i) & 0xFF)));
        return largest;
    }

  private:
    static receiver::Stream::Settings settings(uint16_t port, bool withSound, double timeoutSeconds) {
        receiver::Stream::Settings settings;
        settings.server = {"127.0.0.1", port};
        settings.quality = "high";
        settings.withSound = withSound;
        settings.limits.seconds = timeoutSeconds;
        return settings;
    }

    receiver::Stream fStream;
    uint64_t fPolls = 0;
    std::vector<int16_t> fSound;
};
