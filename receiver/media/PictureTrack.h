#pragma once

#include <cstdint>
#include <string>

#include "MediaEncoder.h"
#include "MediaFormat.h"
#include "PictureScaler.h"

namespace receiver {

/// The pictures of a recording: at any times that grow, all of the size of the first.
class PictureTrack {
  public:
    /// Two pictures are at least so many microseconds apart: matroska counts in milliseconds.
    static constexpr int64_t kShortestStep = 1000;

    /// False with a reason. The muxer outlives this.
    bool Open(AVFormatContext& muxer, const MediaFormat& format, int width, int height, std::string& reason);

    /// Takes b, g, r, x pixels as what is written from now on. 0, or an FFmpeg library's error, as from the
    /// others.
    int SetPicture(const uint8_t* pixels, int width, int height, int rowBytes);
    /// Writes the picture, once more or for the first time, to be seen from that time on, in microseconds
    /// from the start. It is moved behind the picture before if it isn't.
    int Write(int64_t time);
    int Finish() { return fEncoder.Send(nullptr); }

    uint64_t Count() const { return fCount; }
    /// Of the last picture that was written.
    int64_t LastTime() const { return fLastTime; }

  private:
    static LibavPointer<AVCodecContext> new_codec(const MediaFormat& format, int width, int height);
    bool make_frame(std::string& reason);

    MediaEncoder fEncoder;
    PictureScaler fScaler;
    LibavPointer<AVFrame> fFrame; ///< The current picture.
    uint64_t fCount = 0;
    int64_t fLastTime = -kShortestStep;
    int64_t fKeyTime = 0; ///< Of the last picture that stands for itself.
};

} // namespace receiver
