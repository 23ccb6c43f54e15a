#pragma once

#include "ComposedPicture.h"
#include "X11Grabber.h"
#include "X11Refresh.h"

namespace host {

/// The monitors of an X screen, or the whole screen where the server knows no monitors.
class X11Displays : public Displays {
  public:
    /// \p displayName is what \p connection was opened with.
    X11Displays(const X11Connection& connection, const char* displayName, X11Transport transport);

    int ActiveDisplays(std::vector<DisplayId>& ids) override;
    /// The primary monitor, else the one at the origin, else the first.
    DisplayId MainDisplay() override;
    Rect Bounds(DisplayId id) override;
    std::string ProductName(DisplayId id) override;
    int Picture(const Rect& area, Image& image) override;
    std::unique_ptr<Framebuffer> OpenFramebuffer(DisplayId id) override;
    void RegisterRefreshListener(RefreshListener& listener) override { fRefresh.Register(listener); }
    void UnregisterRefreshListener(RefreshListener& listener) override { fRefresh.Unregister(listener); }
    /// Programs that fill the screen are seen like all others here.
    bool IsCaptured(DisplayId) override { return !fRefresh.IsHeard(); }

    X11Transport Transport() const { return fGrabber.Transport(); }

  private:
    struct Monitor {
        DisplayId id;
        PixelRect place;
        bool isPrimary;
    };
    int list_monitors(std::vector<Monitor>& monitors) const;
    int list_randr_monitors(std::vector<Monitor>& monitors) const;

    const X11Connection& fConnection;
    X11Grabber fGrabber;
    X11Refresh fRefresh;
    PixelRect fScreen; ///< As of the last picture.
    ComposedPicture fComposed;
};

} // namespace host
