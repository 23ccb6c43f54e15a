#include "SoundConverter.h"

#include <algorithm>
#include <vector>

extern "C" {
#include <libavutil/channel_layout.h>
#include <libswresample/swresample.h>
}

namespace host {
namespace {

constexpr uint32_t kHighestRate = 768'000;
constexpr uint32_t kMostChannels = 64; ///< The library's own limit.
constexpr uint32_t kOutChannels = 2;
constexpr uint32_t kOutFrameBytes = kOutChannels * 2;

struct ResamplerDeleter {
    void operator()(SwrContext* resampler) const { swr_free(&resampler); }
};
using Resampler = std::unique_ptr<SwrContext, ResamplerDeleter>;

uint32_t sample_bytes(uint32_t sampleFormat) {
    return sampleFormat == kSampleFormatFloat ? 4 : 2;
}

/// The layouts that the library mixes down by itself, in the order that the driver port promises. Its own of
/// three and four differ, and larger ones are unknown to it or cut off.
AVChannelLayout layout_of(uint32_t channels) {
    AVChannelLayout layout = {};
    if (channels == 3)
        layout = AV_CHANNEL_LAYOUT_SURROUND;
    else if (channels == 4)
        layout = AV_CHANNEL_LAYOUT_QUAD;
    else if (channels >= 2 && channels <= 8)
        av_channel_layout_default(&layout, static_cast<int>(channels));
    else
        layout.nb_channels = static_cast<int>(channels);
    return layout;
}

/// Takes the first channel for the left side and the second, if there is one, for the right. The library's
/// own mix of one channel loses 3 dB.
int pass_first_channels(SwrContext& resampler, uint32_t channels) {
    std::vector<double> matrix(kOutChannels * size_t{channels});
    matrix[0] = 1;
    matrix[channels + (channels > 1 ? 1 : 0)] = 1;
    return swr_set_matrix(&resampler, matrix.data(), static_cast<int>(channels));
}

class SoundConverter : public AudioConverter {
  public:
    explicit SoundConverter(const AudioConverterFormat& format)
        : fRate(static_cast<int>(format.sampleRate)), fChannels(format.channels) {}

    int Convert(const AudioBufferRecord& in, AudioBufferRecord& out) override;

    /// The samples stand in memory that is kept for the next block.
    void FreeDataBuffers(AudioBufferRecord& record) override {
        record.data = nullptr;
        record.byteCount = nullptr;
    }

  private:
    int prepare(uint32_t sampleFormat, uint32_t outRate);

    const int fRate;
    const uint32_t fChannels;
    Resampler fResampler;          ///< Null before the first block.
    uint32_t fSampleFormat = 0;    ///< Of the resampler's source.
    std::vector<uint8_t> fSamples; ///< With room for the largest block so far.
    void* fData = nullptr;         ///< Out records point here and at the next.
    uint32_t fByteCount = 0;
};

/// A resampler for the stream. It is made anew only when the kind of samples changes, which never happens
/// within a stream.
int SoundConverter::prepare(uint32_t sampleFormat, uint32_t outRate) {
    if (fResampler && sampleFormat == fSampleFormat)
        return 0;
    AVChannelLayout source = layout_of(fChannels);
    AVChannelLayout target = AV_CHANNEL_LAYOUT_STEREO;
    SwrContext* made = nullptr;
    const int error = swr_alloc_set_opts2(
        &made, &target, AV_SAMPLE_FMT_S16, static_cast<int>(outRate), &source,
        sampleFormat == kSampleFormatFloat ? AV_SAMPLE_FMT_FLT : AV_SAMPLE_FMT_S16, fRate, 0, nullptr);
    Resampler resampler(made);
    if (error < 0 || !resampler)
        return -1;
    if (source.order == AV_CHANNEL_ORDER_UNSPEC && pass_first_channels(*resampler, fChannels) < 0)
        return -1;
    if (swr_init(resampler.get()) < 0)
        return -1;
    fResampler = std::move(resampler);
    fSampleFormat = sampleFormat;
    return 0;
}

int SoundConverter::Convert(const AudioBufferRecord& in, AudioBufferRecord& out) {
    if (!in.data || !in.byteCount || !in.framesOrRate || !out.framesOrRate || !out.channels ||
        *out.channels != kOutChannels || out.sampleFormat != kSampleFormatInt16 ||
        prepare(in.sampleFormat, *out.framesOrRate) != 0)
        return -1;
    const uint32_t frames =
        std::min(*in.framesOrRate, *in.byteCount / (fChannels * sample_bytes(in.sampleFormat)));
    const int room = swr_get_out_samples(fResampler.get(), static_cast<int>(frames));
    if (room < 0)
        return -1;
    fSamples.resize(std::max(fSamples.size(), static_cast<size_t>(room) * kOutFrameBytes));
    uint8_t* target = fSamples.data();
    const auto* source = static_cast<const uint8_t*>(*in.data);
    const int made = swr_convert(fResampler.get(), &target, room, &source, static_cast<int>(frames));
    if (made < 0)
        return -1;
    fData = fSamples.data();
    fByteCount = static_cast<uint32_t>(made) * kOutFrameBytes;
    out.data = &fData;
    out.byteCount = &fByteCount;
    return 0;
}

} // namespace

std::unique_ptr<AudioConverter> NewSoundConverter(const AudioConverterFormat& format) {
    const bool sane = format.sampleRate >= 1 && format.sampleRate <= kHighestRate && format.channels >= 1 &&
                      format.channels <= kMostChannels;
    return sane ? std::make_unique<SoundConverter>(format) : nullptr;
}

} // namespace host
