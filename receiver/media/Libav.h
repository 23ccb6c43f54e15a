#pragma once

#include <memory>
#include <string>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/audio_fifo.h>
#include <libswresample/swresample.h>
#include <libswscale/swscale.h>
}

namespace receiver {

/// Frees what FFmpeg's libraries hand out.
struct LibavDeleter {
    void operator()(AVCodecContext* codec) const { avcodec_free_context(&codec); }
    void operator()(AVFormatContext* format) const { avformat_free_context(format); }
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    void operator()(AVAudioFifo* queue) const { av_audio_fifo_free(queue); }
    void operator()(SwrContext* converter) const { swr_free(&converter); }
    void operator()(SwsContext* scaler) const { sws_freeContext(scaler); }
};

template <typename T>
using LibavPointer = std::unique_ptr<T, LibavDeleter>;

/// What one of the libraries' error codes means, in words.
inline std::string LibavError(int code) {
    char text[AV_ERROR_MAX_STRING_SIZE] = "";
    av_strerror(code, text, sizeof text);
    return text;
}

} // namespace receiver
