#pragma once

#include <cstdint>

namespace host {

/// Sample formats, as four characters each.
constexpr uint32_t kSampleFormatFloat = 0x666C3332; ///< Native 32-bit float.
constexpr uint32_t kSampleFormatInt16 = 0x736F7774; ///< Signed 16-bit, little-endian.

/// What a converter is made for.
struct AudioConverterFormat {
    uint32_t reserved[6] = {};
    uint32_t sampleRate = 0; ///< Of the source, in frames a second.
    uint32_t channels = 0;   ///< Of the source.
};

/// Sound on its way into or out of a converter: interleaved samples in one block.
struct AudioBufferRecord {
    uint32_t reserved0 = 0;
    uint32_t sampleFormat = 0;
    uint32_t reserved2 = 0;
    void** data = nullptr;         ///< The samples.
    uint32_t* byteCount = nullptr; ///< Their size.
    uint32_t reserved5 = 0;
    uint32_t* framesOrRate = nullptr; ///< In: the frames in the block. Out: frames a second that are wanted.
    uint32_t* channels = nullptr;     ///< In: channels in a frame. Out: channels that are wanted.
    uint32_t reserved8 = 0;
    uint32_t reserved9 = 0;
};

/// Brings one stream of sound from the rate and channels that it was made for to another format. What the
/// conversion holds back at the end of a block comes out with the next, so that the blocks of a stream join
/// without a seam. One thread at a time.
class AudioConverter {
  public:
    virtual ~AudioConverter() = default;

    /// Converts the next block. Fills \p out's data and byte count, which FreeDataBuffers gives back; the
    /// count may be 0 when the block was short. 0, or -1 with \p out as it was.
    virtual int Convert(const AudioBufferRecord& in, AudioBufferRecord& out) = 0;

    /// Frees what Convert put into the record.
    virtual void FreeDataBuffers(AudioBufferRecord& record) = 0;
};

} // namespace host
