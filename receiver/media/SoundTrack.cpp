#include "SoundTrack.h"

#include <algorithm>
#include <cstdlib>

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/samplefmt.h>
}

namespace receiver {

namespace {

constexpr int kBitRate = 160'000;
constexpr int kLargestChunk = 4096; ///< Sample frames, of silence and of uncompressed sound.

/// Sound that doesn't join on by more than this is moved; a server's blocks come early or late by less.
constexpr int64_t kTolerance = SoundTrack::kRate / 20;
/// Sound that doesn't by more than this on average is moved, too.
constexpr int64_t kMeanTolerance = SoundTrack::kRate / 50;
/// Sound that is later than this isn't waited for. Servers keep it for a second, for a receiver that is busy.
constexpr int64_t kPatience = SoundTrack::kRate * 3 / 2;

// Drifts are measured over a second and stretched away so slowly that nobody hears it.
constexpr int64_t kMeasured = SoundTrack::kRate;
constexpr int64_t kNoticed = SoundTrack::kRate / 500;         ///< Where stretching begins,
constexpr int64_t kNegligible = SoundTrack::kRate / 2000;     ///< and where it ends.
constexpr int64_t kLargestStretch = SoundTrack::kRate / 1000; ///< In a second.
constexpr int64_t kStretchSeconds = 4;                        ///< In which an error goes, if it is small.

int64_t frames_at(int64_t microseconds) {
    return av_rescale(microseconds, SoundTrack::kRate, 1'000'000);
}

LibavPointer<AVCodecContext> new_codec(const MediaFormat& format) {
    auto codec = MediaEncoder::NewCodec(format.IsCompressed() ? "aac" : "pcm_s16le");
    if (!codec)
        return codec;
    codec->sample_fmt = format.IsCompressed() ? AV_SAMPLE_FMT_FLTP : AV_SAMPLE_FMT_S16;
    codec->sample_rate = SoundTrack::kRate;
    codec->time_base = {1, SoundTrack::kRate};
    codec->bit_rate = kBitRate;
    av_channel_layout_default(&codec->ch_layout, SoundTrack::kChannels);
    return codec;
}

} // namespace

bool SoundTrack::Open(AVFormatContext& muxer, const MediaFormat& format, std::string& reason) {
    if (!fEncoder.Open(muxer, new_codec(format), nullptr, reason))
        return false;
    fQueue.reset(av_audio_fifo_alloc(fEncoder.Codec().sample_fmt, kChannels, kLargestChunk));
    fFrame.reset(av_frame_alloc());
    if (!fQueue || !fFrame)
        reason = "out of memory";
    return fQueue && fFrame;
}

int SoundTrack::Write(std::span<const uint8_t> samples, int channels, int rate, int64_t time) {
    if (!prepare(channels, rate))
        return AVERROR(ENOMEM);
    const size_t frameBytes = static_cast<size_t>(channels) * sizeof(int16_t);
    auto frames = static_cast<int64_t>(samples.size() / frameBytes);
    const int64_t error = frames_at(time) - fPosition;
    const bool isMoved = !fIsFlowing || std::abs(error) > kTolerance || !steer(error, frames);
    int status = isMoved && error > 0 ? add_silence(error) : 0;
    const int64_t skipped = isMoved && error < 0 ? std::min(av_rescale(-error, rate, kRate), frames) : 0;
    if (skipped < frames) {
        fIsFlowing = true;
        const size_t offset = static_cast<size_t>(skipped) * frameBytes;
        if (status == 0)
            status = convert(samples.data() + offset, static_cast<int>(frames - skipped));
    }
    return status == 0 ? encode(false) : status;
}

/// Makes the converter for the format that came.
bool SoundTrack::prepare(int channels, int rate) {
    if (channels == fChannels && rate == fRate)
        return true;
    AVChannelLayout in, out;
    av_channel_layout_default(&in, channels);
    av_channel_layout_default(&out, kChannels);
    SwrContext* converter = nullptr;
    const int error = swr_alloc_set_opts2(&converter, &out, fEncoder.Codec().sample_fmt, kRate, &in,
                                          AV_SAMPLE_FMT_S16, rate, 0, nullptr);
    fConverter.reset(converter);
    if (error < 0 || swr_init(converter) < 0)
        return false;
    fChannels = channels;
    fRate = rate;
    fIsStretching = false;
    return true;
}

AVFrame* SoundTrack::frame_for(int frames) {
    const AVCodecContext& codec = fEncoder.Codec();
    av_frame_unref(fFrame.get());
    fFrame->format = codec.sample_fmt;
    fFrame->sample_rate = kRate;
    fFrame->nb_samples = frames;
    if (av_channel_layout_copy(&fFrame->ch_layout, &codec.ch_layout) < 0 ||
        av_frame_get_buffer(fFrame.get(), 0) < 0)
        return nullptr;
    return fFrame.get();
}

int SoundTrack::convert(const uint8_t* samples, int frames) {
    AVFrame* out = frame_for(std::max(swr_get_out_samples(fConverter.get(), frames), 1));
    if (!out)
        return AVERROR(ENOMEM);
    const int count = swr_convert(fConverter.get(), out->extended_data, out->nb_samples, &samples, frames);
    if (count < 0)
        return count;
    fPosition += count;
    return av_audio_fifo_write(fQueue.get(), reinterpret_cast<void**>(out->extended_data), count) < count
               ? AVERROR(ENOMEM)
               : 0;
}

int SoundTrack::add_silence(int64_t frames) {
    while (frames > 0) {
        const int count = static_cast<int>(std::min<int64_t>(frames, kLargestChunk));
        AVFrame* out = frame_for(count);
        if (!out)
            return AVERROR(ENOMEM);
        av_samples_set_silence(out->extended_data, 0, count, kChannels, fEncoder.Codec().sample_fmt);
        if (av_audio_fifo_write(fQueue.get(), reinterpret_cast<void**>(out->extended_data), count) < count)
            return AVERROR(ENOMEM);
        fPosition += count;
        frames -= count;
        if (const int error = encode(false); error < 0)
            return error;
    }
    return 0;
}

/// Stretches the sound a little while it is off on average. False if it is off by too much for that.
bool SoundTrack::steer(int64_t error, int64_t frames) {
    fErrorSum += error * frames;
    fErrorFrames += frames;
    if (fErrorFrames < kMeasured)
        return true;
    const int64_t mean = fErrorSum / fErrorFrames;
    fErrorSum = fErrorFrames = 0;
    if (std::abs(mean) > kMeanTolerance)
        return false;
    const bool wasStretching = fIsStretching;
    fIsStretching = std::abs(mean) > (wasStretching ? kNegligible : kNoticed);
    const int64_t delta =
        fIsStretching ? std::clamp(mean / kStretchSeconds, -kLargestStretch, kLargestStretch) : 0;
    // It resamples from the first time on; until then samples pass as they are.
    if (fIsStretching || wasStretching)
        swr_set_compensation(fConverter.get(), static_cast<int>(delta), delta == 0 ? 0 : kRate);
    return true;
}

int SoundTrack::Advance(int64_t now) {
    const int64_t missing = frames_at(now) - fPosition;
    if (fIsFlowing && missing < kPatience)
        return 0;
    fIsFlowing = false;
    return add_silence(missing);
}

/// Sends what fills the encoder's frames, or all.
int SoundTrack::encode(bool all) {
    const int fixed = fEncoder.Codec().frame_size;
    const int wanted = fixed > 0 ? fixed : kLargestChunk;
    while (true) {
        const int queued = av_audio_fifo_size(fQueue.get());
        if (queued == 0 || (fixed > 0 && queued < fixed && !all))
            return 0;
        AVFrame* frame = frame_for(std::min(queued, wanted));
        if (!frame)
            return AVERROR(ENOMEM);
        av_audio_fifo_read(fQueue.get(), reinterpret_cast<void**>(frame->extended_data), frame->nb_samples);
        frame->pts = fEncoded;
        fEncoded += frame->nb_samples;
        if (const int error = fEncoder.Send(frame); error < 0)
            return error;
    }
}

int SoundTrack::Finish() {
    const int error = encode(true);
    return error < 0 ? error : fEncoder.Send(nullptr);
}

} // namespace receiver
