#pragma once

#include <array>
#include <vector>

#include "BuiltinWindowPainter.h"
#include "Clock.h"
#include "ComposedPicture.h"
#include "TestCard.h"

namespace host {

class RunLoop;

/// Two displays side by side that show test cards: 1280 x 720 at the origin and 1024 x 768 to the right of
/// it, with a window gliding over each. A picture is a view into one desktop of pixels, in which only what
/// moves is painted anew.
///
/// For measuring the delay between picture and sound, a box on each card flashes white at every whole second
/// of the clock, while MicrosecondsSinceBoot() % 1'000'000 < TestCard::kFlash; the built-in tone clicks at
/// those same moments.
class BuiltinDisplays : public Displays {
  public:
    /// What the cards show follows \p clock.
    explicit BuiltinDisplays(Clock& clock);
    ~BuiltinDisplays() override;

    int ActiveDisplays(std::vector<DisplayId>& ids) override;
    DisplayId MainDisplay() override;
    Rect Bounds(DisplayId id) override;
    std::string ProductName(DisplayId id) override;
    int Picture(const Rect& area, Image& image) override;
    std::unique_ptr<Framebuffer> OpenFramebuffer(DisplayId id) override;
    void RegisterRefreshListener(RefreshListener& listener) override;
    void UnregisterRefreshListener(RefreshListener& listener) override;
    bool IsCaptured(DisplayId) override { return false; }

  private:
    void report_changes();
    Image view(const PixelRect& area) const;

    Clock& fClock;
    std::vector<uint8_t> fDesktop;
    std::array<TestCard, 2> fCards;
    std::array<BuiltinWindowPainter, 2> fWindows; ///< On top of the cards.
    ComposedPicture fComposed;
    std::vector<RefreshListener*> fListeners;
    RunLoop* fLoop = nullptr; ///< The one that has the timer.
    int fTimer = 0;           ///< Runs while there is a listener; else 0.
    int64_t fReported = 0;    ///< The time that listeners know of.
};

} // namespace host
