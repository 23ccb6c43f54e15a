#pragma once

#include "AudioDriver.h"
#include "Clock.h"

namespace host {

/// Taps the built-in device: 1000 Hz on the left, 500 Hz on the right, and a click on both sides at every
/// whole second, when the test cards flash, so that anyone can measure how far sound and picture are apart.
/// Every sample is a pure function of the clock.
class BuiltinAudioDriver : public AudioDriver {
  public:
    explicit BuiltinAudioDriver(Clock& clock) : fClock(clock) {}

    bool HasService(const std::string&) override { return true; }
    std::unique_ptr<AudioTap> OpenService(const std::string& className) override;

  private:
    Clock& fClock;
};

} // namespace host
