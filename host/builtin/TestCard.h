#pragma once

#include <string>
#include <vector>

#include "PixelPen.h"

namespace host {

/// A display's test card: colour bars, grey scales, fine lines, a circle, marks that tell every edge and
/// corner apart, a clock, a block that runs along a track and a box that flashes. It paints into pixels that
/// it is given; all that it shows is a pure function of the display's number, its size and the time.
class TestCard {
  public:
    /// How long the box flashes at the start of each whole second, in microseconds.
    static constexpr int64_t kFlash = 100'000;

    /// Paints the still part at once; \p pen covers the display.
    TestCard(const PixelPen& pen, int number);

    /// Paints the moving parts that touch \p area, which counts from the card's corner.
    void Update(int64_t microseconds, const PixelRect& area);

    /// The parts that look different at two times, from the card's corner.
    std::vector<PixelRect> ChangedAreas(int64_t before, int64_t after) const;

    /// The moving parts: the clock's box, the block's track and the box that flashes.
    PixelRect ClockArea() const;
    PixelRect TrackArea() const;
    PixelRect FlashArea() const;

    /// Whether the box is lit. The time counts from the machine's start.
    static bool IsFlashing(int64_t microseconds);

  private:
    PixelRect panel(int rowStart, int rowEnd) const;

    void paint_grid();
    void paint_edges();
    void paint_corners();
    void paint_labels();
    void paint_panel(int number);
    void paint_colour_bars(const PixelRect& area);
    void paint_grey_ramp(const PixelRect& area);
    void paint_grey_steps(const PixelRect& area);
    void paint_fine_patterns(const PixelRect& area);
    void paint_stripes(const PixelRect& area, int columnPeriod, int rowPeriod);
    void paint_centred(const std::string& text, const PixelRect& area, uint32_t colour);
    void paint_clock(int64_t microseconds);
    void paint_track(int64_t microseconds);
    void paint_flash(int64_t microseconds);

    PixelPen fPen;
    int fUnit; ///< An eighteenth of the height: everything is placed by it.
};

} // namespace host
