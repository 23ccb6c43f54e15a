#pragma once

#include <memory>
#include <string>

#include "PosixHost.h"
#include "X11Displays.h"
#include "X11Pointer.h"
#include "X11WindowServer.h"

namespace host {

/// A machine whose screen belongs to an X server.
class X11Host : public PosixHost {
  public:
    /// Opens the named display, or the environment's for null or "". Null with one line of reason in \p
    /// whyNot.
    static std::unique_ptr<X11Host> Open(const char* displayName, std::string& whyNot,
                                         X11Transport transport = X11Transport::kSharedMemory);

    const char* Name() const override { return "x11"; }
    void LetGo() override { fConnection->Abort(); }
    Displays& DisplaysPort() override { return fDisplays; }
    Pointer& PointerPort() override { return fPointer; }
    WindowServer& WindowServerPort() override { return fWindowServer; }

    /// How the last picture came; how the next will come, before there was one.
    X11Transport Transport() const { return fDisplays.Transport(); }

  private:
    X11Host(std::unique_ptr<X11Connection> connection, const char* displayName, X11Transport transport);

    std::unique_ptr<X11Connection> fConnection;
    X11Displays fDisplays;
    X11Pointer fPointer;
    X11WindowServer fWindowServer;
};

} // namespace host
