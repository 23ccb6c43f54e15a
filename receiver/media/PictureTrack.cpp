#include "PictureTrack.h"

#include <algorithm>

extern "C" {
#include <libavutil/opt.h>
}

namespace receiver {

namespace {

constexpr AVRational kMicroseconds{1, 1'000'000};
constexpr AVRational kTimeBase{1, 90'000};  ///< As broadcasters count.
constexpr int64_t kKeyInterval = 4'000'000; ///< Where players can jump to, in microseconds.
constexpr int kHighDefinitionRows = 720;

/// What players assume of a picture of this height, in case that they don't read what the file says.
void set_colours(AVCodecContext& codec) {
    const bool isHighDefinition = codec.height >= kHighDefinitionRows;
    codec.color_range = AVCOL_RANGE_MPEG;
    codec.colorspace = isHighDefinition ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
    codec.color_primaries = isHighDefinition ? AVCOL_PRI_BT709 : AVCOL_PRI_SMPTE170M;
    codec.color_trc = isHighDefinition ? AVCOL_TRC_BT709 : AVCOL_TRC_SMPTE170M;
}

/// Fast enough for a live source on two cores; no picture waits for later ones, and key pictures come by
/// time, since a still source has one picture a second.
void set_h264(AVCodecContext& codec, const MediaFormat& format) {
    set_colours(codec);
    codec.max_b_frames = 0;
    codec.gop_size = static_cast<int>(format.rate * kKeyInterval / 1e6) + 1;
    av_opt_set(codec.priv_data, "preset", "veryfast", 0);
    av_opt_set(codec.priv_data, "forced-idr", "1", 0);
    av_opt_set_double(codec.priv_data, "crf", format.crf, 0);
    av_opt_set(codec.priv_data, "x264-params", "rc-lookahead=0:sync-lookahead=0:mbtree=0", 0);
}

} // namespace

LibavPointer<AVCodecContext> PictureTrack::new_codec(const MediaFormat& format, int width, int height) {
    auto codec = MediaEncoder::NewCodec(format.IsCompressed() ? "libx264" : "rawvideo");
    if (!codec)
        return codec;
    const bool isSubsampled = format.IsCompressed() || format.pixels == MediaFormat::Pixels::kYUV420P;
    codec->width = isSubsampled ? std::max(width & ~1, 2) : width;
    codec->height = isSubsampled ? std::max(height & ~1, 2) : height;
    codec->pix_fmt = isSubsampled ? AV_PIX_FMT_YUV420P : AV_PIX_FMT_BGR0;
    codec->time_base = kTimeBase;
    codec->framerate = av_d2q(format.rate, 1001000);
    codec->sample_aspect_ratio = {1, 1};
    if (format.IsCompressed()) {
        set_h264(*codec, format);
    } else if (isSubsampled) {
        codec->color_range = AVCOL_RANGE_MPEG;
        codec->colorspace = AVCOL_SPC_SMPTE170M; // What is assumed where it can't be told.
    }
    return codec;
}

bool PictureTrack::Open(AVFormatContext& muxer, const MediaFormat& format, int width, int height,
                        std::string& reason) {
    return fEncoder.Open(muxer, new_codec(format, width, height), nullptr, reason) && make_frame(reason);
}

bool PictureTrack::make_frame(std::string& reason) {
    const AVCodecContext& codec = fEncoder.Codec();
    fFrame.reset(av_frame_alloc());
    if (fFrame) {
        fFrame->format = codec.pix_fmt;
        fFrame->width = codec.width;
        fFrame->height = codec.height;
        fFrame->color_range = codec.color_range;
        fFrame->colorspace = codec.colorspace;
        fFrame->color_primaries = codec.color_primaries;
        fFrame->color_trc = codec.color_trc;
        fFrame->sample_aspect_ratio = codec.sample_aspect_ratio;
        if (av_frame_get_buffer(fFrame.get(), 0) == 0)
            return true;
    }
    reason = "out of memory";
    return false;
}

int PictureTrack::SetPicture(const uint8_t* pixels, int width, int height, int rowBytes) {
    // The encoder may still hold the one before.
    const int error = av_frame_make_writable(fFrame.get());
    if (error < 0)
        return error;
    return fScaler.Draw(pixels, width, height, rowBytes, *fFrame) ? 0 : AVERROR(ENOMEM);
}

int PictureTrack::Write(int64_t time) {
    fLastTime = std::max(time, fLastTime + kShortestStep);
    const bool isKey = fCount == 0 || fLastTime - fKeyTime >= kKeyInterval;
    if (isKey)
        fKeyTime = fLastTime;
    fFrame->pict_type = isKey ? AV_PICTURE_TYPE_I : AV_PICTURE_TYPE_NONE;
    fFrame->pts = av_rescale_q(fLastTime, kMicroseconds, kTimeBase);
    ++fCount;
    return fEncoder.Send(fFrame.get());
}

} // namespace receiver
