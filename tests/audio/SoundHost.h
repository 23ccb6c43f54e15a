#pragma once

#include <chrono>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <mutex>
#include <vector>

#include "FakeHost.h"
#include "SoundConverter.h"

/// A machine whose sound a test scripts: one output device, and a driver whose queue the test fills. Any one
/// operation can be made to fail. Conversion is real.
class SoundHost : public FakeHost, private host::AudioDevice, private host::AudioDriver {
  public:
    std::vector<uint32_t> channels{2};
    double rate = 48000;
    std::string service = "com_quillon_driver_QuillonAudio"; ///< The driver that the machine has.
    int failing = -1; ///< Which of the operations fails, counted from 0 in the order of their calls.
    bool hasConverter = true;
    int convertersMade = 0;
    int operations = 0; ///< So far.

    /// Puts a block into the driver's queue.
    void Play(const std::vector<float>& samples) {
        const std::lock_guard hold(fMutex);
        fQueue.push_back(samples);
        fChanged.notify_all();
    }

    /// Waits until the last block was taken, and whoever took it has come back for more.
    bool AwaitTaken() {
        std::unique_lock hold(fMutex);
        return fChanged.wait_for(hold, std::chrono::seconds(10),
                                 [this] { return fQueue.empty() && fWaiting; });
    }

    /// Lets every look at the device hang, ten seconds at most, or go on.
    void Hang(bool hangs) {
        const std::lock_guard hold(fMutex);
        fHangs = hangs;
        fChanged.notify_all();
    }

    /// Makes the wait for data fail from now on.
    void BreakQueue() {
        const std::lock_guard hold(fMutex);
        fBroken = true;
        fChanged.notify_all();
    }

    host::AudioDevice* AudioDevicePort() override { return this; }
    host::AudioDriver* AudioDriverPort() override { return this; }
    std::unique_ptr<host::AudioConverter>
    NewAudioConverter(const host::AudioConverterFormat& format) override {
        ++convertersMade;
        return hasConverter ? host::NewSoundConverter(format) : nullptr;
    }

  private:
    class Tap : public host::AudioTap {
      public:
        explicit Tap(SoundHost& owner) : fOwner(owner) {}
        int SetProperties(const std::string& model, const std::string& device) override {
            return model == "model" && device == "device" ? fOwner.answer() : -1;
        }
        int OpenQueue() override { return 0; }
        host::AudioWait WaitForData(unsigned milliseconds) override {
            std::unique_lock hold(fOwner.fMutex);
            fOwner.fWaiting = true;
            fOwner.fChanged.notify_all();
            const bool ready =
                fOwner.fChanged.wait_for(hold, std::chrono::milliseconds(milliseconds),
                                         [this] { return fOwner.fBroken || !fOwner.fQueue.empty(); });
            fOwner.fWaiting = false;
            if (fOwner.fBroken)
                return host::AudioWait::kFailed;
            return ready ? host::AudioWait::kData : host::AudioWait::kTimedOut;
        }
        bool DataAvailable() override {
            const std::lock_guard hold(fOwner.fMutex);
            return !fOwner.fQueue.empty();
        }
        int Dequeue(void* block, uint32_t& size) override {
            const std::lock_guard hold(fOwner.fMutex);
            const std::vector<float> samples = fOwner.fQueue.front();
            fOwner.fQueue.pop_front();
            const auto bytes = static_cast<uint32_t>(samples.size() * sizeof(float));
            if (bytes > size)
                return -1;
            std::memcpy(block, samples.data(), bytes);
            size = bytes;
            return 0;
        }
        uint64_t DroppedBlocks() override { return 0; }

      private:
        SoundHost& fOwner;
    };

    int answer() { return operations++ == failing ? -1 : 0; }

    int DefaultOutputDevice(host::AudioDeviceId& device) override {
        device = 5;
        std::unique_lock hold(fMutex);
        fChanged.wait_for(hold, std::chrono::seconds(10), [this] { return !fHangs; });
        return answer();
    }
    int StreamConfiguration(host::AudioDeviceId, std::vector<uint32_t>& out) override {
        out = channels;
        return answer();
    }
    int ModelUID(host::AudioDeviceId, std::string& uid) override {
        uid = "model";
        return answer();
    }
    int DeviceUID(host::AudioDeviceId device, std::string& uid) override {
        uid = device == 5 ? "device" : "";
        return answer();
    }
    int NominalSampleRate(host::AudioDeviceId, double& out) override {
        out = rate;
        return answer();
    }
    bool HasService(const std::string& className) override { return className == service && answer() == 0; }
    std::unique_ptr<host::AudioTap> OpenService(const std::string&) override {
        return answer() == 0 ? std::make_unique<Tap>(*this) : nullptr;
    }

    std::mutex fMutex;
    std::condition_variable fChanged;
    std::deque<std::vector<float>> fQueue;
    bool fWaiting = false;
    bool fBroken = false;
    bool fHangs = false;
};
