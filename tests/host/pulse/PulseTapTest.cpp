#include <chrono>

#include <gtest/gtest.h>

#include "PulseAudioDevice.h"
#include "PulseAudioDriver.h"
#include "SoundServer.h"

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

/// Time for a look on a busy machine; a look that waits for an answer takes much longer.
constexpr auto kPrompt = 500ms;

TEST(PulseTap, FailsAtOnceWithoutAServer) {
    const SoundServer none; // Never started, and no other one is in reach.
    host::PulseAudioDevice device;
    host::PulseAudioDriver driver(device);
    const auto start = Clock::now();
    host::AudioDeviceId id = 0;
    EXPECT_EQ(device.DefaultOutputDevice(id), -1);
    EXPECT_LT(Clock::now() - start, kPrompt);
    const std::unique_ptr<host::AudioTap> tap = driver.OpenService("any");
    EXPECT_EQ(tap->SetProperties("", ""), -1);
    EXPECT_EQ(tap->OpenQueue(), -1);
    EXPECT_EQ(tap->WaitForData(100), host::AudioWait::kFailed);
}

} // namespace
