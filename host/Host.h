#pragma once

#include <memory>

#include "AudioConverter.h"
#include "AudioDevice.h"
#include "AudioDriver.h"
#include "Clock.h"
#include "Desktop.h"
#include "Discovery.h"
#include "Displays.h"
#include "PictureExporter.h"
#include "Pointer.h"
#include "RunLoop.h"
#include "WindowServer.h"

namespace host {

/// The machine as the program sees it: one object that bundles the ports.
///
/// It is installed once, before anything uses it, and outlives everything that does. Most objects of the
/// program are made by functions without arguments and reach their ports through Current().
class Host {
  public:
    virtual ~Host() = default;

    /// What this host is called on the command line, as in "x11".
    virtual const char* Name() const = 0;

    /// The generation of display services that the machine offers, as four hexadecimal digits in the
    /// numbering that zOS knows by name. It decides how frames are captured and whether pointer shapes are
    /// cached.
    virtual uint32_t SystemVersion() const { return 0x1080; }

    /// Ends every wait for the machine, for good: whatever is asked of it from here on fails. Called when the
    /// program ends, so that a machine which hangs can't hold it up. Any thread.
    virtual void LetGo() {}

    virtual Displays& DisplaysPort() = 0;
    virtual Pointer& PointerPort() = 0;
    virtual Clock& ClockPort() = 0;
    virtual RunLoop& RunLoopPort() = 0;

    /// One that offers nothing, unless the machine has windows.
    virtual WindowServer& WindowServerPort() { return fNoWindows; }

    virtual Desktop& DesktopPort() { return fBareDesktop; }

    /// One without the service, unless the machine has it.
    virtual Discovery& DiscoveryPort() { return fNoDiscovery; }

    /// A new exporter for pictures of this geometry; null if the machine has none or refuses the geometry.
    virtual std::unique_ptr<PictureExporter> NewPictureExporter(int width, int height, int rowBytes) = 0;

    /// A new, empty block for the exporters of this host; never null.
    virtual std::unique_ptr<PictureBlock> NewPictureBlock() = 0;

    /// The machine's sound; null when it has none.
    virtual AudioDevice* AudioDevicePort() { return nullptr; }
    virtual AudioDriver* AudioDriverPort() { return nullptr; }

    /// A new converter for one stream of sound; null if the machine has none or refuses the format.
    virtual std::unique_ptr<AudioConverter> NewAudioConverter(const AudioConverterFormat&) { return nullptr; }

    /// The installed host. Must not be called before there is one.
    static Host& Current() { return *gCurrent; }

  private:
    friend class HostScope;
    inline static Host* gCurrent = nullptr;

    WindowServer fNoWindows;
    Desktop fBareDesktop;
    Discovery fNoDiscovery;
};

/// Installs a host for a scope: the program's whole run, or one test.
class HostScope {
  public:
    explicit HostScope(Host& newHost) : fPrevious(Host::gCurrent) { Host::gCurrent = &newHost; }
    ~HostScope() { Host::gCurrent = fPrevious; }
    HostScope(const HostScope&) = delete;
    HostScope& operator=(const HostScope&) = delete;

  private:
    Host* fPrevious;
};

} // namespace host
