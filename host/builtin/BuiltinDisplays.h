#pragma once

#include <array>
#include <vector>

#include "Clock.h"
#include "ComposedPicture.h"
#include "TestCard.h"

namespace host {

/// Two displays side by side that show test cards: 1280 x 720 at the origin and 1024 x 768 to the right of
/// it. A picture is a view into one desktop of pixels, in which only what moves is painted anew.
class BuiltinDisplays : public Displays {
  public:
    /// What the cards show follows \p clock.
    explicit BuiltinDisplays(Clock& clock);

    int ActiveDisplays(std::vector<DisplayId>& ids) override;
    DisplayId MainDisplay() override;
    Rect Bounds(DisplayId id) override;
    std::string ProductName(DisplayId id) override;
    int Picture(const Rect& area, Image& image) override;

  private:
    Image view(const PixelRect& area) const;

    Clock& fClock;
    std::vector<uint8_t> fDesktop;
    std::array<TestCard, 2> fCards;
    ComposedPicture fComposed;
};

} // namespace host
