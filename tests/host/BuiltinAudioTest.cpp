#include <vector>

#include <gtest/gtest.h>

#include "BuiltinAudioDevice.h"
#include "BuiltinAudioDriver.h"
#include "SetClock.h"
#include "ToneMeter.h"

namespace {

constexpr int kRate = host::BuiltinAudioDevice::kRate;

TEST(BuiltinAudio, ClicksAtEachWholeSecondBetweenTones) {
    SetClock clock;
    host::BuiltinAudioDriver driver(clock);
    const std::unique_ptr<host::AudioTap> tap = driver.OpenService("any");
    clock.microseconds = 6'500'000;
    ASSERT_EQ(tap->SetProperties("", host::BuiltinAudioDevice::kUID), 0);
    ASSERT_EQ(tap->OpenQueue(), 0);
    EXPECT_FALSE(tap->DataAvailable()) << "no time has passed";
    clock.microseconds = 7'500'000;
    std::vector<float> samples;
    while (tap->DataAvailable()) {
        std::vector<float> block(host::AudioTap::kLargestBlock / sizeof(float));
        uint32_t size = host::AudioTap::kLargestBlock;
        ASSERT_EQ(tap->Dequeue(block.data(), size), 0);
        block.resize(size / sizeof(float));
        samples.insert(samples.end(), block.begin(), block.end());
    }
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
