#pragma once

#include "Host.h"
#include "PosixClock.h"
#include "PosixRunLoop.h"

namespace host {

/// What the hosts of a POSIX machine have in common: its clock, a poll loop, JPEG pictures, and sound
/// conversion.
class PosixHost : public Host {
  public:
    Clock& ClockPort() override { return fClock; }
    RunLoop& RunLoopPort() override { return fRunLoop; }
    std::unique_ptr<PictureExporter> NewPictureExporter(int width, int height, int rowBytes) override;
    std::unique_ptr<PictureBlock> NewPictureBlock() override;
    std::unique_ptr<AudioConverter> NewAudioConverter(const AudioConverterFormat& format) override;

  private:
    PosixClock fClock;
    PosixRunLoop fRunLoop;
};

} // namespace host
