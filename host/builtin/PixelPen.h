#pragma once

#include <cstdint>
#include <string_view>

#include "PixelRect.h"

namespace host {

/// Draws plain shapes into 32-bit pixels (bytes b, g, r, and one undefined) that belong to someone else.
/// Colours are 0xRRGGBB; places count from the left top corner of the pixels. Whatever lies outside is cut
/// off.
class PixelPen {
  public:
    PixelPen(uint8_t* pixels, int width, int height, int rowBytes)
        : fPixels(pixels), fBounds{0, 0, width, height}, fRowBytes(rowBytes) {}

    int Width() const { return fBounds.width; }
    int Height() const { return fBounds.height; }

    /// The same pixels seen through a window, which lies within these.
    PixelPen Part(const PixelRect& window) const;

    void Fill(const PixelRect& area, uint32_t colour);
    /// A frame inside of the rectangle's edges.
    void Frame(const PixelRect& area, int thickness, uint32_t colour);
    /// A smoothed ring; \p radius reaches to the middle of its line.
    void Ring(int centreX, int centreY, double radius, double thickness, uint32_t colour);
    /// Text in a face of 5 x 7 dots with \p scale pixels for a dot, from its left top corner; each character
    /// advances 6 dots. Capitals, digits and the signs of a clock are known, others stay blank.
    void Text(std::string_view text, int x, int y, int scale, uint32_t colour);

    /// What Text covers.
    static PixelRect TextBounds(std::string_view text, int x, int y, int scale);

  private:
    uint8_t* pixel(int x, int y) const;
    void blend(int x, int y, uint32_t colour, double coverage);

    uint8_t* fPixels;
    PixelRect fBounds;
    int fRowBytes;
};

} // namespace host
