#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "MediaEncoder.h"
#include "MediaFormat.h"

namespace receiver {

/// The sound of a recording, without a gap: stereo, 44100 Hz. Sound is put where its time says: what is
/// missing becomes silence, what comes twice is cut, and slow drifts are stretched away.
class SoundTrack {
  public:
    static constexpr int kRate = 44100;
    static constexpr int kChannels = 2;

    /// False with a reason. The muxer outlives this.
    bool Open(AVFormatContext& muxer, const MediaFormat& format, std::string& reason);

    /// Signed 16-bit samples, interleaved, whole sample frames, the first heard at that time in microseconds
    /// from the start, which is not far behind the present. 0, or an FFmpeg library's error, as from the
    /// others.
    int Write(std::span<const uint8_t> samples, int channels, int rate, int64_t time);
    /// Tells the present: if no sound has come for a while, what came up to now was silence.
    int Advance(int64_t now);
    int Finish();

    double Seconds() const { return static_cast<double>(fPosition) / kRate; }

  private:
    bool prepare(int channels, int rate);
    int convert(const uint8_t* samples, int frames);
    int add_silence(int64_t frames);
    bool steer(int64_t error, int64_t frames);
    int encode(bool all);
    AVFrame* frame_for(int frames);

    MediaEncoder fEncoder;
    LibavPointer<SwrContext> fConverter;
    LibavPointer<AVAudioFifo> fQueue; ///< Converted, less than a frame of the encoder.
    LibavPointer<AVFrame> fFrame;
    int fChannels = 0; ///< Of what comes; 0 before the first.
    int fRate = 0;
    int64_t fPosition = 0;   ///< Sample frames that were put into the queue.
    int64_t fEncoded = 0;    ///< Of them, sample frames that left it.
    bool fIsFlowing = false; ///< Sound has come lately.
    int64_t fErrorSum = 0;   ///< Of the stretch that is being measured, sample frames by sample frames.
    int64_t fErrorFrames = 0;
    bool fIsStretching = false;
};

} // namespace receiver
