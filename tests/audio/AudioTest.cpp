#include <numeric>

#include <gtest/gtest.h>

#include "SoundHost.h"
#include "ToneMeter.h"
#include "vnAudio.h"
#include "vnAudioBuffer.h"
#include "vnSpeakerCapture.h"

namespace {

using Samples = std::vector<float>;

class Audio : public testing::Test {
  protected:
    SoundHost machine;
    host::HostScope scope{machine};
    std::unique_ptr<vnAudio> audio{vnAudio::Factory()};

    /// What Grab takes; untouched arguments show as they were.
    struct Grabbed {
        void* data = nullptr;
        unsigned size = 77;
        unsigned channels = 77;
        unsigned rate = 77;
        BUFFER_TYPE type = 77;
        unsigned long long time = 77;

        Samples Floats() const {
            const auto* first = static_cast<const float*>(data);
            return {first, first + size / sizeof(float)};
        }
    };
    Grabbed Grab() {
        Grabbed grabbed;
        audio->Grab(&grabbed.data, &grabbed.size, &grabbed.channels, &grabbed.rate, &grabbed.type,
                    &grabbed.time);
        return grabbed;
    }
    bool IsListening() { return Grab().channels != 77; }
};

TEST_F(Audio, GrabTakesAllThatWasPlayedSinceTheLast) {
    machine.microseconds = 123456;
    audio->Start();
    machine.Play({1, 2, 3, 4});
    machine.Play({5, 6});
    ASSERT_TRUE(machine.AwaitTaken());

    audio->Grab(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr); // Takes nothing.
    const Grabbed first = Grab();
    EXPECT_EQ(first.Floats(), (Samples{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(first.channels, 2U);
    EXPECT_EQ(first.rate, 48000U);
    EXPECT_EQ(first.type, 0x666C3332U);
    EXPECT_EQ(first.time, 123456U);
    EXPECT_EQ(Grab().size, 0U);
}

TEST_F(Audio, StartsAreCounted) {
    const struct {
        bool starts, listens;
    } steps[] = {{false, false}, {true, true},   {true, true}, {false, true},
                 {false, false}, {false, false}, {true, true}};
    for (const auto& step : steps) {
        step.starts ? audio->Start() : audio->Stop();
        EXPECT_EQ(IsListening(), step.listens);
    }
}

TEST_F(Audio, AStartThatFailsAnywhereLeavesItStoppedAndALaterOneTriesAnew) {
    audio->Start();
    const int operations = machine.operations;
    ASSERT_GE(operations, 8);
    for (int failing = 0; failing < operations; ++failing) {
        audio.reset(vnAudio::Factory());
        machine.operations = 0;
        machine.failing = failing;
        audio->Start();
        EXPECT_FALSE(IsListening()) << "operation " << failing;
        machine.failing = -1;
        audio->Start();
        EXPECT_TRUE(IsListening()) << "operation " << failing;
    }
}

TEST_F(Audio, RefusesFormatsThatNoRingCanHold) {
    const struct {
        std::vector<uint32_t> channels;
        double rate;
        bool taken;
    } cases[] = {{{1, 1}, 44100, true}, {{}, 48000, false},  {{256}, 48000, false}, {{2}, 0, false},
                 {{2}, -1, false},      {{2}, 1e300, false}, {{2}, NAN, false},     {{255}, 1e6, true}};
    for (const auto& example : cases) {
        audio.reset(vnAudio::Factory());
        machine.channels = example.channels;
        machine.rate = example.rate;
        audio->Start();
        EXPECT_EQ(IsListening(), example.taken) << example.rate;
    }
}

TEST_F(Audio, AFullRingDropsWholeBlocks) {
    machine.rate = 1000; // Two seconds of stereo are 16000 bytes: a ring of 16384.
    audio->Start();
    for (int block = 0; block < 5; ++block)
        machine.Play(Samples(1000, static_cast<float>(block)));
    ASSERT_TRUE(machine.AwaitTaken());
    const Samples kept = Grab().Floats();
    ASSERT_EQ(kept.size(), 4000U);
    EXPECT_EQ(kept.back(), 3);
}

TEST_F(Audio, ADriverThatBreaksDownEndsTheSoundOnly) {
    audio->Start();
    machine.Play({1, 2});
    ASSERT_TRUE(machine.AwaitTaken());
    machine.BreakQueue();
    EXPECT_EQ(Grab().size, 8U);
    EXPECT_EQ(Grab().size, 0U);
    audio->Stop();
}

TEST_F(Audio, KnowsTheDriversThatItCanTap) {
    machine.service = "net_merrowfield_driver_MerrowfieldAudio";
    EXPECT_STREQ(vnSpeakerCapture::getService(), "net_merrowfield_driver_MerrowfieldAudio");
    machine.service = "another";
    EXPECT_FALSE(vnSpeakerCapture::hasService());
    audio->Start();
    EXPECT_FALSE(IsListening());
}

/// The stream's next block on the wire; none when the conversion failed.
std::vector<int16_t> Convert(vnAudio& audio, const Samples& samples, int channels = 2, int rate = 48000) {
    unsigned char* out = nullptr;
    int size = -1;
    Samples copy = samples;
    if (!audio.ConvertAudioFrame(copy.data(), static_cast<int>(copy.size() * sizeof(float)), kBufferType_fl32,
                                 rate, channels, &out, size))
        return {};
    zRefPtr<vnAudioBuffer> buffer(new vnAudioBuffer(out, size, true));
    EXPECT_EQ(size % static_cast<int>(vnAudio::kWireFrameBytes), 0);
    std::vector<int16_t> wire(static_cast<size_t>(size) / sizeof(int16_t));
    if (size > 0)
        std::memcpy(wire.data(), buffer->Data(), static_cast<size_t>(size));
    return wire;
}

TEST_F(Audio, ConvertsAStreamInUnevenBlocksWithoutASeam) {
    std::vector<int16_t> wire;
    int frame = 0;
    for (int block = 0; frame < 48000; ++block) {
        Samples samples;
        for (const int end = frame + 1 + block * 37 % 1000; frame < end; ++frame) {
            samples.push_back(0.5F * static_cast<float>(std::sin(2 * std::numbers::pi * frame / 48)));
            samples.push_back(0);
        }
        const std::vector<int16_t> part = Convert(*audio, samples);
        wire.insert(wire.end(), part.begin(), part.end());
    }
    EXPECT_NEAR(static_cast<double>(wire.size()) / 2, frame * 44100.0 / 48000, 20);
    EXPECT_EQ(machine.convertersMade, 1);
    wire.erase(wire.begin(), wire.begin() + 200); // The filter's start.
    const ToneMeter left(wire, 2, 0, 44100, 32768);
    EXPECT_NEAR(left.Level(1000), 0.5, 0.005);
    EXPECT_LT(left.WorstBreak(1000), 0.001);
    EXPECT_LT(ToneMeter(wire, 2, 1, 44100, 32768).Level(1000), 0.001);
}

TEST_F(Audio, ConvertsAtMost48000FramesAndWholeOnes) {
    const Samples million(250'000);
    EXPECT_NEAR(static_cast<double>(Convert(*audio, million).size()), 2 * 44100, 40);

    // Other tags count two bytes a sample; 44100 Hz pass without delay.
    audio.reset(vnAudio::Factory());
    unsigned char* out = nullptr;
    int size = 5;
    char bytes[9 * 2 * 2 + 3] = {};
    EXPECT_TRUE(audio->ConvertAudioFrame(bytes, sizeof bytes, kBufferType_sowt, 44100, 2, &out, size));
    EXPECT_EQ(size, 9 * 4);
    free(out);
}

TEST_F(Audio, NoSoundAndSoundThatCannotBeConvertedDiffer) {
    unsigned char* out = nullptr;
    int size = 5;
    float frame[2] = {};
    const auto convert = [&](int bytes, int channels) {
        return audio->ConvertAudioFrame(frame, bytes, kBufferType_fl32, 48000, channels, &out, size);
    };
    EXPECT_FALSE(convert(0, 2));
    EXPECT_FALSE(convert(sizeof frame, 0));
    machine.hasConverter = false;
    EXPECT_FALSE(convert(sizeof frame, 2));
    EXPECT_EQ(size, 5);

    audio.reset(vnAudio::Factory());
    machine.hasConverter = true;
    EXPECT_TRUE(convert(sizeof frame, 2)) << "held back until the next block";
    EXPECT_EQ(size, 0);
}

} // namespace
