#include <chrono>
#include <cstring>

#include <gtest/gtest.h>

#include "PulseAudioDevice.h"
#include "PulseAudioDriver.h"
#include "SoundServer.h"
#include "ToneMeter.h"
#include "XServer.h"

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr int kRate = 48000;
constexpr auto kLimit = 30s;

class PulseTap : public testing::Test {
  protected:
    SoundServer server;
    host::PulseAudioDevice device;
    host::PulseAudioDriver driver{device};
    std::unique_ptr<host::AudioTap> tap;

    /// Taps the default sink as the program does.
    void OpenTap() {
        host::AudioDeviceId id = 0;
        std::string model;
        std::string uid;
        ASSERT_EQ(device.DefaultOutputDevice(id), 0);
        ASSERT_EQ(device.ModelUID(id, model), 0);
        ASSERT_EQ(device.DeviceUID(id, uid), 0);
        tap = driver.OpenService("any");
        ASSERT_EQ(tap->SetProperties(model, uid), 0);
        ASSERT_EQ(tap->OpenQueue(), 0);
    }

    /// The next samples of a stereo tap; none when they don't come in time.
    std::vector<float> Record(Clock::duration length) {
        const auto frames = static_cast<size_t>(kRate * std::chrono::duration<double>(length).count());
        std::vector<float> samples;
        const auto end = Clock::now() + kLimit;
        while (samples.size() < 2 * frames && Clock::now() < end) {
            if (tap->WaitForData(100) == host::AudioWait::kData)
                Append(samples);
        }
        return samples.size() < 2 * frames ? std::vector<float>() : samples;
    }

    /// True as soon as a tenth of a second sounds of 1000 Hz.
    bool AwaitTone() {
        const auto end = Clock::now() + kLimit;
        while (Clock::now() < end) {
            const std::vector<float> samples = Record(100ms);
            if (ToneMeter(samples, 2, 0, kRate).Level(1000) > 0.3)
                return true;
        }
        return false;
    }

    void Append(std::vector<float>& samples) {
        std::vector<float> block(host::AudioTap::kLargestBlock / sizeof(float));
        uint32_t size = host::AudioTap::kLargestBlock;
        if (tap->Dequeue(block.data(), size) != 0)
            return;
        EXPECT_EQ(size % (2 * sizeof(float)), 0U);
        samples.insert(samples.end(), block.begin(),
                       block.begin() + static_cast<std::ptrdiff_t>(size / sizeof(float)));
    }
};

#define NEED_SOUND()                                                                                         \
    if (!server.Start())                                                                                     \
    SKIP_OR_FAIL(server.WhyNot())

TEST_F(PulseTap, TellsTheDefaultSinkAsItIs) {
    NEED_SOUND();
    ASSERT_TRUE(server.AddSink("six", 44100, 6));
    host::AudioDeviceId id = 0;
    ASSERT_EQ(device.DefaultOutputDevice(id), 0);
    std::vector<uint32_t> channels;
    EXPECT_EQ(device.StreamConfiguration(id, channels), 0);
    EXPECT_EQ(channels, std::vector<uint32_t>{6});
    double rate = 0;
    EXPECT_EQ(device.NominalSampleRate(id, rate), 0);
    EXPECT_EQ(rate, 44100);
    std::string text;
    EXPECT_EQ(device.ModelUID(id, text), 0);
    EXPECT_EQ(text, "Loudspeaker");
    EXPECT_EQ(device.DeviceUID(id, text), 0);
    EXPECT_EQ(text, "six");
    EXPECT_EQ(device.DeviceUID(id + 1, text), -1);
}

TEST_F(PulseTap, FollowsTheDefaultSinkInTheFirstOnesFormat) {
    NEED_SOUND();
    ASSERT_TRUE(server.AddSink("main", kRate, 2));
    OpenTap();
    ASSERT_FALSE(Record(100ms).empty());
    ASSERT_TRUE(server.AddSink("other", 44100, 6));
    const auto player = server.PlayTone("other");
    ASSERT_TRUE(AwaitTone());
    Record(200ms);
    const std::vector<float> samples = Record(1s);
    EXPECT_GT(ToneMeter(samples, 2, 0, kRate).Level(1000), 0.3);
    EXPECT_LT(ToneMeter(samples, 2, 0, kRate).WorstBreak(1000), 0.02);
}

/// Time for a look on a busy machine; a look that waits for an answer takes much longer.
constexpr auto kPrompt = 500ms;

TEST_F(PulseTap, FailsAtOnceWithoutAServer) {
    const auto start = Clock::now();
    host::AudioDeviceId id = 0;
    EXPECT_EQ(device.DefaultOutputDevice(id), -1);
    EXPECT_LT(Clock::now() - start, kPrompt);
    tap = driver.OpenService("any");
    EXPECT_EQ(tap->SetProperties("", ""), -1);
    EXPECT_EQ(tap->OpenQueue(), -1);
    EXPECT_EQ(tap->WaitForData(100), host::AudioWait::kFailed);
}

TEST_F(PulseTap, IsNotHeldUpByAServerThatHangs) {
    NEED_SOUND();
    ASSERT_TRUE(server.AddSink("main", kRate, 2));
    OpenTap();
    server.Freeze(true);
    auto start = Clock::now();
    host::AudioDeviceId id = 0;
    EXPECT_EQ(device.DefaultOutputDevice(id), -1);
    EXPECT_LT(Clock::now() - start, 3s);
    start = Clock::now();
    tap.reset();
    EXPECT_LT(Clock::now() - start, kPrompt);
    server.Freeze(false);
    EXPECT_EQ(device.DefaultOutputDevice(id), 0);
}

} // namespace
