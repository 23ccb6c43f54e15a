#pragma once

#include <atomic>
#include <memory>
#include <string>

#include "zThread.h"

class vnAudio_mac;
namespace host {
class AudioTap;
}

/// The link to the driver that taps the machine's output, and the thread that hands what comes to the owner:
/// it waits in slices of a tenth of a second, which is also the longest that the destructor waits for it.
class vnSpeakerCapture : public zThreadMain {
  public:
    /// Results of WaitForDataWithTimeout besides 0.
    static constexpr unsigned kBadArgument = 0xE00002C2;
    static constexpr unsigned kTimedOut = 0x10004003;
    static constexpr unsigned kBroken = 0xE00002BC;

    explicit vnSpeakerCapture(vnAudio_mac& owner);
    ~vnSpeakerCapture() override;

    /// Taps the device and starts the thread. False when there is no driver or it refuses. A driver that
    /// fails later ends the thread without a word: the owner just gets nothing.
    bool Initialize(const std::string& modelUID, const std::string& deviceUID, int channels);

    /// Whether this machine has one of the drivers that can be tapped.
    static bool hasService();

    /// The class name of the first driver that there is, else null.
    static const char* getService();

    /// Waits until \p tap has data: 0, or one of the results above.
    static unsigned WaitForDataWithTimeout(host::AudioTap* tap, unsigned milliseconds);

    /// The thread's body.
    int Main(int argc, const char** argv) override;

  private:
    void drain();

    vnAudio_mac& fOwner;
    std::unique_ptr<zThread> fThread;
    std::unique_ptr<host::AudioTap> fTap; ///< The thread's while it runs.
    std::atomic<bool> fRunning{false};
    int fChannels = 2;

    // The thread's own.
    std::unique_ptr<uint8_t[]> fBlock;
    double fFrames = 0; ///< Handed to the owner so far.
};
