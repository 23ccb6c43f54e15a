#pragma once

#include "Clock.h"
#include "WindowServer.h"

namespace host {

/// The two windows of the built-in machine, which its displays show.
class BuiltinWindowServer : public WindowServer {
  public:
    /// Where the windows are follows \p clock.
    explicit BuiltinWindowServer(Clock& clock) : fClock(clock) {}

    bool IsAvailable() override { return true; }
    int NextProcess(ProcessSerialNumber& process) override;
    /// The one that was brought to the front last.
    int FrontProcess(ProcessSerialNumber& process) override;
    int SetFrontProcess(const ProcessSerialNumber& process) override;
    int ProcessInformation(const ProcessSerialNumber& process, ProcessInfo& info) override;
    int OnScreenWindowList(const ProcessSerialNumber& process, std::vector<WindowId>& windows) override;
    int WindowTitle(WindowId window, std::string& title) override;
    int ScreenRectForWindow(WindowId window, Rect& rect) override;

  private:
    Clock& fClock;
    ProcessSerialNumber fFront{0, 1};
};

} // namespace host
