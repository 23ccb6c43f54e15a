#pragma once

#include "WindowServer.h"
#include "X11Properties.h"
#include "X11WindowList.h"

namespace host {

/// The window server's operations over one connection: the windows that the window manager lists, or plain
/// top-level windows without one.
/// Nothing is kept between calls, except for the applications that a walk goes through: foreign windows come
/// and go as they like, and a request for one that has gone has no answer, which is all that happens.
class X11Windows : public WindowServer {
  public:
    explicit X11Windows(const X11Connection& connection);

    /// While the X server lives.
    bool IsAvailable() override;
    int NextProcess(ProcessSerialNumber& process) override;
    /// The application of the window manager's active window, else of the window with the keyboard.
    int FrontProcess(ProcessSerialNumber& process) override;
    /// Raises the application's windows, in their order, and activates the topmost.
    int SetFrontProcess(const ProcessSerialNumber& process) override;
    /// The identifier is the desktop file's or the window class, the name the class or the process's.
    int ProcessInformation(const ProcessSerialNumber& process, ProcessInfo& info) override;
    int OnScreenWindowList(const ProcessSerialNumber& process, std::vector<WindowId>& windows) override;
    /// The title in UTF-8 that most windows have.
    int WindowTitle(WindowId window, std::string& title) override;
    /// The name is the older kind of title.
    int CopyWindowInfo(WindowId window, WindowInfo& info) override;
    /// With the frame that the window manager draws, without the shadow that the window draws.
    int ScreenRectForWindow(WindowId window, Rect& rect) override;

  private:
    std::vector<X11Window> windows_of(const ProcessSerialNumber& process) const;
    WindowId active_window() const;
    WindowId window_with_keyboard() const;
    std::string desktop_file_of(WindowId window) const;
    int level_of(X11Properties::Question windowType) const;
    void activate(WindowId window) const;
    void raise(const std::vector<WindowId>& windows) const;

    const X11Connection& fConnection;
    X11Properties fProperties;
    X11WindowList fList;
    std::vector<X11Window> fWalk; ///< What the walk has still before it.
};

} // namespace host
