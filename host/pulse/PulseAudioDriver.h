#pragma once

#include "AudioDriver.h"

namespace host {

class PulseAudioDevice;

/// Taps what the sound server plays. The server does so by itself: whichever driver is asked for is there.
class PulseAudioDriver : public AudioDriver {
  public:
    /// Taps are set up for what \p device last saw.
    explicit PulseAudioDriver(const PulseAudioDevice& device) : fDevice(device) {}

    bool HasService(const std::string&) override { return true; }
    std::unique_ptr<AudioTap> OpenService(const std::string& className) override;

  private:
    const PulseAudioDevice& fDevice;
};

} // namespace host
