#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace host {

/// What became of a wait for sound.
enum class AudioWait {
    kData,     ///< A block is in the queue.
    kTimedOut, ///< None came in time.
    kFailed,   ///< None will ever come.
};

/// A tap on the sound that an output device plays: a queue of blocks that fills by itself.
///
/// A block is raw interleaved samples and nothing else: native 32-bit floats in whole frames, with as many
/// channels and at the rate that the device port reported for the tapped device. Up to eight channels stand
/// in the order left, right, centre, low frequencies, rear left and right, side left and right; but four are
/// left and right, front and rear, five have no low frequencies, and seven one rear channel. Sound that
/// pauses may come as silence or not at all. One thread at a time.
class AudioTap {
  public:
    /// No block is larger, in bytes.
    static constexpr uint32_t kLargestBlock = 32768;

    virtual ~AudioTap() = default;

    /// Which device to tap, by the names that the device port gave. 0, or -1 when it can't be tapped.
    virtual int SetProperties(const std::string& modelUID, const std::string& deviceUID) = 0;

    /// Opens the queue and lets the machine say when it holds something. 0, or -1.
    virtual int OpenQueue() = 0;

    /// Waits until the queue holds a block, at most \p milliseconds.
    virtual AudioWait WaitForData(unsigned milliseconds) = 0;

    /// Whether the queue holds a block.
    virtual bool DataAvailable() = 0;

    /// Takes the oldest block out of the queue. \p size is the room at \p block in bytes, then the block's
    /// size. 0, or -1 when the queue is empty; a block larger than the room is dropped with -1.
    virtual int Dequeue(void* block, uint32_t& size) = 0;

    /// Blocks that were lost so far because nobody took them: a full queue drops the oldest.
    virtual uint64_t DroppedBlocks() = 0;
};

/// The driver that taps output devices. Any thread.
class AudioDriver {
  public:
    virtual ~AudioDriver() = default;

    /// Whether the machine has a driver of this class.
    virtual bool HasService(const std::string& className) = 0;

    /// A new link to the driver of this class; null when there is none.
    virtual std::unique_ptr<AudioTap> OpenService(const std::string& className) = 0;
};

} // namespace host
