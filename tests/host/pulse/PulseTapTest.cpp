#include <chrono>

#include <gtest/gtest.h>

#include "Await.h"
#include "PulseAudioDevice.h"
#include "PulseAudioDriver.h"
#include "SkipOrFail.h"
#include "SoundServer.h"
#include "ToneMeter.h"

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr int kRate = 48000;

class PulseTap : public testing::Test {
  protected:
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

    /// The next samples of a stereo tap; fewer when they don't come in time.
    std::vector<float> Record(double seconds) {
        std::vector<float> samples;
        Await([&] {
            std::vector<float> block(host::AudioTap::kLargestBlock / sizeof(float));
            uint32_t size = host::AudioTap::kLargestBlock;
            if (tap->WaitForData(100) == host::AudioWait::kData && tap->Dequeue(block.data(), size) == 0) {
                block.resize(size / sizeof(float));
                samples.insert(samples.end(), block.begin(), block.end());
            }
            return static_cast<double>(samples.size()) >= 2 * kRate * seconds;
        });
        return samples;
    }

    SoundServer server;
    host::PulseAudioDevice device;
    host::PulseAudioDriver driver{device};
    std::unique_ptr<host::AudioTap> tap;
};

TEST_F(PulseTap, FollowsTheDefaultSinkInTheFirstOnesFormat) {
    if (!server.Start())
        SKIP_OR_FAIL(server.WhyNot());
    ASSERT_TRUE(server.AddSink("main", kRate, 2));
    OpenTap();
    ASSERT_FALSE(Record(0.1).empty());
    ASSERT_TRUE(server.AddSink("other", 44100, 6));
    const auto player = server.PlayTone("other");
    ASSERT_TRUE(player) << "is sox installed?";
    ASSERT_TRUE(Await([this] { return ToneMeter(Record(0.1), 2, 0, kRate).Level(1000) > 0.3; }));
    Record(0.2); // The player's own start.
    const std::vector<float> samples = Record(1);
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

} // namespace
