#include <vector>

#include <gtest/gtest.h>

#include "BuiltinAudioDevice.h"
#include "BuiltinAudioDriver.h"
#include "SetClock.h"
#include "ToneMeter.h"

namespace {

constexpr int kRate = host::BuiltinAudioDevice::kRate;
constexpr int64_t kSecond = 1'000'000;

class BuiltinAudio : public testing::Test {
  protected:
    SetClock clock;
    host::BuiltinAudioDriver driver{clock};
    std::unique_ptr<host::AudioTap> tap = driver.OpenService("any");

    void OpenAt(int64_t microseconds) {
        clock.microseconds = microseconds;
        ASSERT_EQ(tap->SetProperties("", host::BuiltinAudioDevice::kUID), 0);
        ASSERT_EQ(tap->OpenQueue(), 0);
    }

    /// All that the queue holds.
    std::vector<float> Drain() {
        std::vector<float> samples;
        while (tap->DataAvailable()) {
            std::vector<float> block(host::AudioTap::kLargestBlock / sizeof(float));
            uint32_t size = host::AudioTap::kLargestBlock;
            EXPECT_EQ(tap->Dequeue(block.data(), size), 0);
            samples.insert(samples.end(), block.begin(),
                           block.begin() + static_cast<std::ptrdiff_t>(size / sizeof(float)));
        }
        return samples;
    }
};

TEST_F(BuiltinAudio, DeliversTheSamplesThatItsClockHasPassed) {
    OpenAt(5 * kSecond + 100'000);
    EXPECT_FALSE(tap->DataAvailable());
    EXPECT_EQ(tap->WaitForData(1), host::AudioWait::kTimedOut);
    size_t frames = 0;
    for (int step = 0; step < 300; ++step) {
        clock.microseconds += 3'333;
        frames += Drain().size() / 2;
    }
    clock.microseconds += 100;
    EXPECT_EQ(tap->WaitForData(1), host::AudioWait::kData);
    EXPECT_EQ(frames + Drain().size() / 2, static_cast<size_t>(kRate));
    EXPECT_EQ(tap->DroppedBlocks(), 0U);
}

TEST_F(BuiltinAudio, ClicksAtEachWholeSecondBetweenTones) {
    OpenAt(7 * kSecond - 500'000);
    clock.microseconds = 7 * kSecond + 500'000;
    std::vector<float> samples = Drain();
    ASSERT_EQ(samples.size(), 2U * kRate);
    const auto loud =
        std::find_if(samples.begin(), samples.end(), [](float x) { return std::abs(x) > 0.2F; });
    EXPECT_EQ(loud - samples.begin(), kRate) << "the first loud sample is the left one of the whole second";

    samples.resize(kRate);
    EXPECT_NEAR(ToneMeter(samples, 2, 0, kRate).Level(1000), 0.1, 0.001);
    EXPECT_NEAR(ToneMeter(samples, 2, 1, kRate).Level(500), 0.1, 0.001);
    EXPECT_LT(ToneMeter(samples, 2, 0, kRate).WorstBreak(1000), 0.0001);
}

} // namespace
