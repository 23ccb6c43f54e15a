#pragma once

#include "Host.h"
#include "QtRunLoop.h"

namespace host {

/// A machine whose main thread belongs to Qt: another host, but for the main loop.
class QtHost : public Host {
  public:
    /// \p machine outlives this host.
    explicit QtHost(Host& machine) : fMachine(machine) {}

    const char* Name() const override { return fMachine.Name(); }
    uint32_t SystemVersion() const override { return fMachine.SystemVersion(); }
    void LetGo() override { fMachine.LetGo(); }
    Displays& DisplaysPort() override { return fMachine.DisplaysPort(); }
    Pointer& PointerPort() override { return fMachine.PointerPort(); }
    Clock& ClockPort() override { return fMachine.ClockPort(); }
    RunLoop& RunLoopPort() override { return fRunLoop; }
    WindowServer& WindowServerPort() override { return fMachine.WindowServerPort(); }
    Desktop& DesktopPort() override { return fMachine.DesktopPort(); }
    Discovery& DiscoveryPort() override { return fMachine.DiscoveryPort(); }
    AudioDevice* AudioDevicePort() override { return fMachine.AudioDevicePort(); }
    AudioDriver* AudioDriverPort() override { return fMachine.AudioDriverPort(); }
    std::unique_ptr<PictureExporter> NewPictureExporter(int width, int height, int rowBytes) override {
        return fMachine.NewPictureExporter(width, height, rowBytes);
    }
    std::unique_ptr<PictureBlock> NewPictureBlock() override { return fMachine.NewPictureBlock(); }
    std::unique_ptr<AudioConverter> NewAudioConverter(const AudioConverterFormat& format) override {
        return fMachine.NewAudioConverter(format);
    }

  private:
    Host& fMachine;
    QtRunLoop fRunLoop;
};

} // namespace host
