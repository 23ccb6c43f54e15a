#pragma once

#include <cstdint>
#include <memory>

#include "AudioConverter.h"

/// A sample format, as four characters.
using BUFFER_TYPE = uint32_t;
constexpr BUFFER_TYPE kBufferType_fl32 = host::kSampleFormatFloat;
constexpr BUFFER_TYPE kBufferType_sowt = host::kSampleFormatInt16;

/// The sound that this machine plays, as a source that requests pull from. Between two requests it waits in
/// a ring; ConvertAudioFrame brings it to the one format of the wire: 44100 Hz, two channels, signed 16-bit
/// little-endian, interleaved.
///
/// Start, Stop, Grab and ConvertAudioFrame are called by one thread at a time.
class vnAudio {
  public:
    /// The format of the wire.
    static constexpr uint32_t kWireRate = 44100;
    static constexpr uint32_t kWireChannels = 2;
    static constexpr uint32_t kWireFrameBytes = 4;

    /// The source of this platform, owned by the caller; never null.
    static vnAudio* Factory();

    vnAudio();
    virtual ~vnAudio();
    vnAudio(const vnAudio&) = delete;
    vnAudio& operator=(const vnAudio&) = delete;

    /// Begins to listen. Starts are counted: each that succeeds needs its Stop. One that fails leaves the
    /// source stopped, and a later one tries anew; Grab tells the difference.
    virtual void Start() = 0;
    virtual void Stop() = 0;

    /// Takes all the sound that waits. Arguments may be null; a null \p data asks for the format only and
    /// takes nothing. Does nothing at all, arguments untouched, while the source isn't started.
    /// \param data Points to the samples, which stay valid until the next Grab or Stop.
    /// \param size Bytes; 0 when nothing waits.
    /// \param hostTime Microseconds since the machine started, when the last block came in.
    virtual void Grab(void** data, unsigned* size, unsigned* channels, unsigned* sampleRate,
                      BUFFER_TYPE* type, unsigned long long* hostTime) = 0;

    /// Brings the stream's next block to the format of the wire. The converter is made for the first block's
    /// rate and channels and never again. At most 48000 frames are taken, the others are lost, and so is
    /// part of a frame at the end.
    /// \param out Gets a block for free(); null when the few frames of the block wait for the next one.
    /// \return False with \p out and \p outSize untouched when there was nothing, or nothing to convert with.
    virtual bool ConvertAudioFrame(void* data, int size, BUFFER_TYPE type, int sampleRate, int channels,
                                   unsigned char** out, int& outSize);

  private:
    std::unique_ptr<host::AudioConverter> fConverter; ///< Null until the first block.
};
