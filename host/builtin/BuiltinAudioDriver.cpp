#include "BuiltinAudioDriver.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstring>
#include <numbers>
#include <thread>

#include "BuiltinAudioDevice.h"

namespace host {
namespace {

constexpr int64_t kRate = BuiltinAudioDevice::kRate;
constexpr int64_t kLeftHertz = 1000;
constexpr int64_t kRightHertz = 500;
constexpr float kToneLevel = 0.1F;

constexpr int64_t kClickFrames = kRate / 50;
constexpr int64_t kClickHalfPeriod = kRate / 4000; ///< In frames: a square wave of 2 kHz.
constexpr float kClickLevel = 0.5F;

constexpr int64_t kBlockMicroseconds = 10'000;
constexpr int64_t kBlockFrames = kRate * kBlockMicroseconds / 1'000'000;
constexpr int64_t kQueueBlocks = 100;

struct Frame {
    float left;
    float right;
};
constexpr uint32_t kBlockBytes = kBlockFrames * sizeof(Frame);
static_assert(sizeof(Frame) == BuiltinAudioDevice::kChannels * sizeof(float));
static_assert(kBlockBytes <= AudioTap::kLargestBlock);

float tone(int64_t frame, int64_t hertz) {
    const auto phase = static_cast<double>(frame * hertz % kRate) / kRate;
    return kToneLevel * static_cast<float>(std::sin(2 * std::numbers::pi * phase));
}

/// What sounds at this frame, counted from the machine's start.
Frame sound_at(int64_t frame) {
    const int64_t inSecond = frame % kRate;
    if (inSecond >= kClickFrames)
        return {tone(frame, kLeftHertz), tone(frame, kRightHertz)};
    const float click = inSecond / kClickHalfPeriod % 2 ? -kClickLevel : kClickLevel;
    return {click, click};
}

/// A queue that holds nothing: the blocks that it would hold follow from the clock when they are taken.
class ToneTap : public AudioTap {
  public:
    explicit ToneTap(Clock& clock) : fClock(clock) {}

    int SetProperties(const std::string&, const std::string& deviceUID) override {
        return deviceUID == BuiltinAudioDevice::kUID ? 0 : -1;
    }
    int OpenQueue() override {
        fNextBlock = past_blocks();
        return 0;
    }
    AudioWait WaitForData(unsigned milliseconds) override;
    bool DataAvailable() override;
    int Dequeue(void* block, uint32_t& size) override;
    uint64_t DroppedBlocks() override { return fDropped; }

  private:
    int64_t past_blocks() { return fClock.MicrosecondsSinceBoot() / kBlockMicroseconds; }

    Clock& fClock;
    int64_t fNextBlock = 0; ///< Counted from the machine's start.
    uint64_t fDropped = 0;
};

AudioWait ToneTap::WaitForData(unsigned milliseconds) {
    const int64_t due = (fNextBlock + 1) * kBlockMicroseconds - fClock.MicrosecondsSinceBoot();
    std::this_thread::sleep_for(std::chrono::microseconds(std::min(due, int64_t{milliseconds} * 1000)));
    return DataAvailable() ? AudioWait::kData : AudioWait::kTimedOut;
}

bool ToneTap::DataAvailable() {
    const int64_t past = past_blocks();
    if (past - fNextBlock > kQueueBlocks) {
        fDropped += static_cast<uint64_t>(past - kQueueBlocks - fNextBlock);
        fNextBlock = past - kQueueBlocks;
    }
    return past > fNextBlock;
}

int ToneTap::Dequeue(void* block, uint32_t& size) {
    if (!DataAvailable())
        return -1;
    const int64_t start = fNextBlock++ * kBlockFrames;
    if (size < kBlockBytes)
        return -1;
    auto* target = static_cast<uint8_t*>(block);
    for (int64_t i = 0; i < kBlockFrames; ++i) {
        const Frame frame = sound_at(start + i);
        std::memcpy(target, &frame, sizeof frame);
        target += sizeof frame;
    }
    size = kBlockBytes;
    return 0;
}

} // namespace

std::unique_ptr<AudioTap> BuiltinAudioDriver::OpenService(const std::string&) {
    return std::make_unique<ToneTap>(fClock);
}

} // namespace host
