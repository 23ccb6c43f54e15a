#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "zPoint.h"
#include "zRect.h"

namespace receiver {

class Reply;

/// What a reply to "SnapshotByDiffs" or "Snapshot" says, checked: every picture has a place, within a frame
/// of sensible size.
struct StreamReply {
    /// The largest frame that is taken, in pixels; a side may have up to kMaxSide.
    static constexpr int64_t kMaxPixels = int64_t{64} << 20;
    static constexpr int kMaxSide = 16384;
    static constexpr size_t kMaxPictures = 4096;
    /// The pictures of one reply together have at most so many times the pixels of the frame: some states'
    /// worth of changes.
    static constexpr int64_t kMaxCoverage = 12;

    struct Picture {
        zRect place;                   ///< In the coordinates of the server's screen, within the frame.
        std::span<const uint8_t> jpeg; ///< Bottom row first.
    };
    struct Sound {
        int channels;
        int rate;        ///< Sample frames a second.
        int64_t endTime; ///< Of the server's sound clock, in microseconds, behind the last sample.
        std::span<const uint8_t> samples; ///< Signed 16-bit little-endian, interleaved, whole sample frames.
        size_t FrameCount() const { return samples.size() / (static_cast<size_t>(channels) * 2); }
    };
    struct Pointer {
        zPoint corner; ///< Left top corner of its shape, on the server's screen.
        uint32_t shape;
    };

    bool isMuted = false; ///< Paused, or behind a screen saver. Then only the frame is told.
    bool isScreenSaverActive = false;
    zRect frame;               ///< The whole source, on the server's screen.
    int64_t timestamp = 0;     ///< Of the server's machine, in microseconds; 0 if not told.
    uint32_t instance = 0;     ///< Of the server's run.
    uint32_t nextSequence = 0; ///< What to send next; 0 if not told.
    std::vector<Picture> pictures;
    std::optional<Sound> sound;
    std::optional<Pointer> pointer;

    /// True if one picture fills the whole frame.
    bool IsWholeFrame() const { return pictures.size() == 1 && pictures[0].place == frame; }

    /// Reads a reply into this, whose spans then point into the reply's body. False with one line of reason
    /// for a reply that can't be used; what this holds then makes no sense.
    bool Read(const Reply& reply, std::string& reason);
};

} // namespace receiver
