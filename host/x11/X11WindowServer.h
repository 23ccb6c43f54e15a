#pragma once

#include "X11Link.h"

namespace host {

/// The windows of the session in use (see X11Windows).
class X11WindowServer : public WindowServer {
  public:
    explicit X11WindowServer(const X11Link& link) : fLink(link) {}

    bool IsAvailable() override { return windows()->IsAvailable(); }
    int NextProcess(ProcessSerialNumber& process) override { return windows()->NextProcess(process); }
    int FrontProcess(ProcessSerialNumber& process) override { return windows()->FrontProcess(process); }
    int SetFrontProcess(const ProcessSerialNumber& process) override {
        return windows()->SetFrontProcess(process);
    }
    int ProcessInformation(const ProcessSerialNumber& process, ProcessInfo& info) override {
        return windows()->ProcessInformation(process, info);
    }
    int OnScreenWindowList(const ProcessSerialNumber& process, std::vector<WindowId>& ids) override {
        return windows()->OnScreenWindowList(process, ids);
    }
    int WindowTitle(WindowId window, std::string& title) override {
        return windows()->WindowTitle(window, title);
    }
    int CopyWindowInfo(WindowId window, WindowInfo& info) override {
        return windows()->CopyWindowInfo(window, info);
    }
    int ScreenRectForWindow(WindowId window, Rect& rect) override {
        return windows()->ScreenRectForWindow(window, rect);
    }

  private:
    std::shared_ptr<X11Windows> windows() const {
        const std::shared_ptr<X11Session> session = fLink.Session();
        return {session, &session->Windows()};
    }

    const X11Link& fLink;
};

} // namespace host
