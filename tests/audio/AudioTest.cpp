#include <numeric>

#include <gtest/gtest.h>

#include "SoundHost.h"
#include "ToneMeter.h"
#include "vnAudio.h"

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

    /// Converts a stream's next block and appends it to the wire's samples.
    bool Convert(Samples block, int channels = 2, BUFFER_TYPE type = kBufferType_fl32, int rate = 48000) {
        unsigned char* out = nullptr;
        int size = 0;
        const auto bytes = static_cast<int>(block.size() * sizeof(float));
        if (!audio->ConvertAudioFrame(block.data(), bytes, type, rate, channels, &out, size))
            return false;
        const auto* first = reinterpret_cast<const int16_t*>(out);
        wire.insert(wire.end(), first, first + size / 2);
        free(out);
        return true;
    }

    std::vector<int16_t> wire;
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
    audio->Stop(); // Counts for nothing.
    audio->Start();
    audio->Start();
    audio->Stop();
    EXPECT_TRUE(IsListening());
    audio->Stop();
    EXPECT_FALSE(IsListening());
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

TEST_F(Audio, StartsOnDriversThatItKnowsWithFormatsThatARingCanHold) {
    const std::string kKnown = machine.service;
    const struct {
        std::string driver;
        std::vector<uint32_t> channels;
        double rate;
        bool starts;
    } cases[] = {
        {kKnown, {1, 1}, 44100, true},  {kKnown, {255}, 1e6, true},
        {kKnown, {}, 48000, false},     {kKnown, {256}, 48000, false},
        {kKnown, {2}, 0, false},        {kKnown, {2}, -1, false},
        {kKnown, {2}, 1e300, false},    {kKnown, {2}, NAN, false},
        {"another", {2}, 48000, false}, {"net_merrowfield_driver_MerrowfieldAudio", {2}, 48000, true},
    };
    for (const auto& c : cases) {
        audio.reset(vnAudio::Factory());
        machine.service = c.driver;
        machine.channels = c.channels;
        machine.rate = c.rate;
        audio->Start();
        EXPECT_EQ(IsListening(), c.starts) << c.driver << ' ' << c.rate;
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
}

TEST_F(Audio, ConvertsAStreamInUnevenBlocksWithoutASeam) {
    int frame = 0;
    for (int block = 0; frame < 48000; ++block) {
        Samples samples;
        for (const int end = frame + 1 + block * 37 % 1000; frame < end; ++frame) {
            samples.push_back(0.5F * static_cast<float>(std::sin(2 * std::numbers::pi * frame / 48)));
            samples.push_back(0);
        }
        ASSERT_TRUE(Convert(samples));
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
    EXPECT_TRUE(Convert(Samples(250'000)));
    EXPECT_NEAR(static_cast<double>(wire.size()), 2 * 44100, 40);

    // 44100 Hz pass without delay.
    const std::pair<BUFFER_TYPE, size_t> kFrames[] = {{kBufferType_fl32, 4}, {kBufferType_sowt, 9}};
    for (const auto& [type, frames] : kFrames) {
        audio.reset(vnAudio::Factory());
        wire.clear();
        EXPECT_TRUE(Convert(Samples(9), 2, type, 44100));
        EXPECT_EQ(wire.size(), 2 * frames);
    }
}

TEST_F(Audio, NoSoundAndSoundThatCannotBeConvertedDiffer) {
    EXPECT_FALSE(Convert({}));
    EXPECT_FALSE(Convert(Samples(2), 0));
    machine.hasConverter = false;
    EXPECT_FALSE(Convert(Samples(2)));
    machine.hasConverter = true;
    EXPECT_TRUE(Convert(Samples(2))) << "held back until the next block";
    EXPECT_EQ(wire.size(), 0U);
}

} // namespace
