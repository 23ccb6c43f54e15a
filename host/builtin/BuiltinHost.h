#pragma once

#include "BuiltinAudioDevice.h"
#include "BuiltinAudioDriver.h"
#include "BuiltinDisplays.h"
#include "BuiltinPointer.h"
#include "BuiltinWindowServer.h"
#include "PosixHost.h"

namespace host {

/// A machine that needs no display: test cards, a wandering pointer, two gliding windows and a tone.
class BuiltinHost : public PosixHost {
  public:
    BuiltinHost() : BuiltinHost(nullptr) {}
    /// Everything that moves follows \p clock, which outlives the host.
    explicit BuiltinHost(Clock& clock) : BuiltinHost(&clock) {}

    const char* Name() const override { return "builtin"; }
    Displays& DisplaysPort() override { return fDisplays; }
    Pointer& PointerPort() override { return fPointer; }
    WindowServer& WindowServerPort() override { return fWindowServer; }
    Clock& ClockPort() override { return fClock; }
    AudioDevice* AudioDevicePort() override { return &fToneDevice; }
    AudioDriver* AudioDriverPort() override { return &fToneDriver; }

  private:
    explicit BuiltinHost(Clock* clock)
        : fClock(clock ? *clock : PosixHost::ClockPort()),
          fDisplays(fClock),
          fPointer(fClock),
          fWindowServer(fClock),
          fToneDriver(fClock) {}

    Clock& fClock;
    BuiltinDisplays fDisplays;
    BuiltinPointer fPointer;
    BuiltinWindowServer fWindowServer;
    BuiltinAudioDevice fToneDevice;
    BuiltinAudioDriver fToneDriver;
};

} // namespace host
