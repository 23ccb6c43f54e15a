#pragma once

#include "AvahiDiscovery.h"
#include "Host.h"
#include "PosixClock.h"
#include "PosixDesktop.h"
#include "PosixRunLoop.h"
#include "PulseAudioDevice.h"
#include "PulseAudioDriver.h"

namespace host {

/// What the hosts of a POSIX machine have in common: its clock, a poll loop, JPEG pictures, DNS-SD, and the
/// sound server of the user, which is left alone until someone asks for sound.
class PosixHost : public Host {
  public:
    Clock& ClockPort() override { return fClock; }
    RunLoop& RunLoopPort() override { return fRunLoop; }
    Desktop& DesktopPort() override { return fDesktop; }
    Discovery& DiscoveryPort() override { return fDiscovery; }
    AudioDevice* AudioDevicePort() override { return &fAudioDevice; }
    AudioDriver* AudioDriverPort() override { return &fAudioDriver; }
    std::unique_ptr<PictureExporter> NewPictureExporter(int width, int height, int rowBytes) override;
    std::unique_ptr<PictureBlock> NewPictureBlock() override;
    std::unique_ptr<AudioConverter> NewAudioConverter(const AudioConverterFormat& format) override;

  private:
    PosixClock fClock;
    PosixRunLoop fRunLoop;
    PosixDesktop fDesktop;
    AvahiDiscovery fDiscovery;
    PulseAudioDevice fAudioDevice;
    PulseAudioDriver fAudioDriver{fAudioDevice};
};

} // namespace host
