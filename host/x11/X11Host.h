#pragma once

#include <memory>
#include <string>

#include "PosixHost.h"
#include "X11Displays.h"
#include "X11Pointer.h"
#include "X11WindowServer.h"

namespace host {

/// A machine whose screen belongs to an X server. It outlives that server: what is asked of it fails until
/// there is another one by the same name.
class X11Host : public PosixHost {
  public:
    /// Opens the named display, or the environment's for null or "". Null with one line of reason in \p
    /// whyNot.
    static std::unique_ptr<X11Host> Open(const char* displayName, std::string& whyNot,
                                         X11Transport transport = X11Transport::kSharedMemory);

    const char* Name() const override { return "x11"; }
    void LetGo() override { fLink.LetGo(); }
    Displays& DisplaysPort() override { return fDisplays; }
    Pointer& PointerPort() override { return fPointer; }
    WindowServer& WindowServerPort() override { return fWindowServer; }

    /// How the last picture came; how the next will come, before there was one.
    X11Transport Transport() const { return fLink.Session()->Screen().Transport(); }

  private:
    X11Host(const std::string& displayName, X11Transport transport, std::shared_ptr<X11Session> session);

    X11Link fLink;
    X11Reports fReports{fLink};
    X11Displays fDisplays{fLink, fReports};
    X11Pointer fPointer{fLink, fReports};
    X11WindowServer fWindowServer{fLink};
};

} // namespace host
