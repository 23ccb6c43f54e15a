#pragma once

#include <cstdint>

#include "Libav.h"

namespace receiver {

/// Encodes one track of a recording and hands its packets to the muxer.
class MediaEncoder {
  public:
    /// A codec that isn't open yet, for its settings; null if this machine's libraries lack it.
    static LibavPointer<AVCodecContext> NewCodec(const char* name);

    /// Opens the codec with its private options, which it takes over, and adds a stream to the muxer, which
    /// outlives this. False with a reason.
    bool Open(AVFormatContext& muxer, LibavPointer<AVCodecContext> codec, AVDictionary** options,
              std::string& reason);

    const AVCodecContext& Codec() const { return *fCodec; }
    bool IsOpen() const { return fStream; }

    /// Encodes a frame, whose pts counts in the codec's time base, and writes what came out; null ends the
    /// track. 0, or the error of an FFmpeg library.
    int Send(const AVFrame* frame);

  private:
    int receive();

    AVFormatContext* fMuxer = nullptr;
    LibavPointer<AVCodecContext> fCodec;
    LibavPointer<AVPacket> fPacket;
    AVStream* fStream = nullptr; ///< The muxer's.
};

} // namespace receiver
