#pragma once

#include <mutex>

#include "X11Link.h"
#include "X11Reports.h"

namespace host {

/// The monitors of an X screen, or the whole screen where the server knows no monitors. They are told apart
/// by their names, which outlast the server.
class X11Displays : public Displays {
  public:
    X11Displays(X11Link& link, X11Reports& reports) : fLink(link), fReports(reports) {}

    int ActiveDisplays(std::vector<DisplayId>& ids) override;
    /// The primary monitor, else the one at the origin, else the first.
    DisplayId MainDisplay() override;
    Rect Bounds(DisplayId id) override;
    std::string ProductName(DisplayId id) override;
    int Picture(const Rect& area, Image& image) override;
    std::unique_ptr<Framebuffer> OpenFramebuffer(DisplayId id) override;
    void RegisterRefreshListener(RefreshListener& listener) override { fReports.Register(listener); }
    void UnregisterRefreshListener(RefreshListener& listener) override { fReports.Unregister(listener); }
    void RegisterDisplaysListener(DisplaysListener& listener) override { fReports.Register(listener); }
    void UnregisterDisplaysListener(DisplaysListener& listener) override { fReports.Unregister(listener); }
    /// Programs that fill the screen are seen like all others here.
    bool IsCaptured(DisplayId) override { return !fReports.IsDrawingHeard(); }
    /// Whether a compositing manager runs, by the selection that such managers own.
    bool IsComposited() override;

  private:
    std::vector<X11Monitor> monitors() const;
    DisplayId id_of(const X11Monitor& monitor);

    X11Link& fLink;
    X11Reports& fReports;
    std::shared_ptr<X11Session> fPictured; ///< Whose memory the last picture is.
    std::mutex fNamesLock;
    std::vector<std::string> fNames; ///< With the lock: those of the displays 1, 2 and so on.
};

} // namespace host
