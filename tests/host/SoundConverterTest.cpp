#include <cmath>
#include <numbers>
#include <vector>

#include <gtest/gtest.h>

#include "SoundConverter.h"
#include "ToneMeter.h"

namespace {

constexpr int kOutRate = 44100;

/// Runs sound through a converter of its own, block by block; the result is what came out.
template <typename Sample>
std::vector<int16_t> Convert(std::vector<Sample> samples, uint32_t rate, uint32_t channels) {
    const auto converter = host::NewSoundConverter({.sampleRate = rate, .channels = channels});
    std::vector<int16_t> result;
    const uint32_t blockFrames = rate / 50 + 1;
    for (size_t start = 0; start < samples.size(); start += blockFrames * channels) {
        void* data = &samples[start];
        uint32_t frames = std::min(blockFrames, static_cast<uint32_t>(samples.size() - start) / channels);
        auto byteCount = static_cast<uint32_t>(frames * channels * sizeof(Sample));
        uint32_t outRate = kOutRate;
        uint32_t outChannels = 2;
        const host::AudioBufferRecord in{.sampleFormat = sizeof(Sample) == 4 ? host::kSampleFormatFloat
                                                                             : host::kSampleFormatInt16,
                                         .data = &data,
                                         .byteCount = &byteCount,
                                         .framesOrRate = &frames,
                                         .channels = &channels};
        host::AudioBufferRecord out{
            .sampleFormat = host::kSampleFormatInt16, .framesOrRate = &outRate, .channels = &outChannels};
        EXPECT_EQ(converter->Convert(in, out), 0);
        const auto* first = static_cast<const int16_t*>(*out.data);
        result.insert(result.end(), first, first + *out.byteCount / sizeof(int16_t));
        converter->FreeDataBuffers(out);
    }
    return result;
}

/// A second of sines of 1000 Hz, with the level that stands for each channel.
std::vector<float> Sines(uint32_t rate, const std::vector<double>& levels) {
    std::vector<float> samples;
    for (uint32_t frame = 0; frame < rate; ++frame) {
        for (const double level : levels)
            samples.push_back(
                static_cast<float>(level * std::sin(2 * std::numbers::pi * 1000 * frame / rate)));
    }
    return samples;
}

double Level(const std::vector<int16_t>& stereo, size_t channel) {
    return ToneMeter(stereo, 2, channel, kOutRate, 32768).Level(1000);
}

TEST(SoundConverter, BringsAnyRateToTheOneWanted) {
    for (const uint32_t rate : {8000U, 22050U, 44100U, 48000U, 96000U, 192000U}) {
        const std::vector<int16_t> out = Convert(Sines(rate, {0.5, 0.25}), rate, 2);
        EXPECT_NEAR(static_cast<double>(out.size()) / 2, kOutRate, 150) << rate;
        EXPECT_NEAR(Level(out, 0), 0.5, 0.01) << rate;
        EXPECT_NEAR(Level(out, 1), 0.25, 0.01) << rate;
    }
}

TEST(SoundConverter, TakesOneChannelForBothSidesAndTheFirstTwoOfMany) {
    for (const size_t channels : {1U, 2U, 10U, 24U, 64U}) {
        const double right = channels > 1 ? 0.25 : 0.5;
        std::vector<double> levels(channels, 0.01);
        levels[0] = 0.5;
        if (channels > 1)
            levels[1] = right;
        const auto out = Convert(Sines(48000, levels), 48000, static_cast<uint32_t>(channels));
        EXPECT_NEAR(Level(out, 0), 0.5, 0.01) << channels;
        EXPECT_NEAR(Level(out, 1), right, 0.01) << channels;
    }
}

TEST(SoundConverter, MixesSurroundIntoBothSidesWithoutOverflow) {
    for (size_t channels = 3; channels <= 8; ++channels) {
        const auto count = static_cast<uint32_t>(channels);
        std::vector<double> levels(channels, 1);
        const std::vector<int16_t> loud = Convert(Sines(48000, levels), 48000, count);
        EXPECT_LT(Level(loud, 0), 1.01) << channels;
        levels.assign(channels, 0);
        levels[channels == 4 ? 0 : 2] = 0.5; // The centre, where there is one.
        const std::vector<int16_t> centre = Convert(Sines(48000, levels), 48000, count);
        EXPECT_GT(Level(centre, 0), 0.05) << channels;
        if (channels != 4) {
            EXPECT_NEAR(Level(centre, 0), Level(centre, 1), 0.01) << channels;
        }
    }
}

TEST(SoundConverter, PassesSamplesThatFitAlready) {
    const std::vector<int16_t> samples{1, -2, 32767, -32768, 100, 200};
    EXPECT_EQ(Convert(samples, kOutRate, 2), samples);
}

TEST(SoundConverter, IsNotMadeForFormatsThatNoSoundHas) {
    for (const auto& [rate, channels] : {std::pair{0U, 2U}, {48000U, 0U}, {48000U, 65U}, {0xFFFFFFFFU, 2U}})
        EXPECT_EQ(host::NewSoundConverter({.sampleRate = rate, .channels = channels}), nullptr);
}

} // namespace
