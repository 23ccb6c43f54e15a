#include "PixelPen.h"

#include <cmath>
#include <cstring>

#include "DotFace.h"

namespace host {

PixelPen PixelPen::Part(const PixelRect& window) const {
    return PixelPen(pixel(window.x, window.y), window.width, window.height, fRowBytes);
}

uint8_t* PixelPen::pixel(int x, int y) const {
    return fPixels + static_cast<ptrdiff_t>(y) * fRowBytes + static_cast<ptrdiff_t>(x) * 4;
}

void PixelPen::Fill(const PixelRect& area, uint32_t colour) {
    const PixelRect visible = area.Intersection(fBounds);
    if (visible.IsEmpty())
        return;
    uint8_t* first = pixel(visible.x, visible.y);
    const uint8_t bytes[4] = {static_cast<uint8_t>(colour), static_cast<uint8_t>(colour >> 8),
                              static_cast<uint8_t>(colour >> 16), 0xFF};
    for (int x = 0; x < visible.width; ++x)
        std::memcpy(first + static_cast<ptrdiff_t>(x) * 4, bytes, 4);
    for (int row = 1; row < visible.height; ++row)
        std::memcpy(first + static_cast<ptrdiff_t>(row) * fRowBytes, first,
                    static_cast<size_t>(visible.width) * 4);
}

void PixelPen::Frame(const PixelRect& area, int thickness, uint32_t colour) {
    Fill({area.x, area.y, area.width, thickness}, colour);
    Fill({area.x, area.y + area.height - thickness, area.width, thickness}, colour);
    Fill({area.x, area.y, thickness, area.height}, colour);
    Fill({area.x + area.width - thickness, area.y, thickness, area.height}, colour);
}

void PixelPen::Ring(int centreX, int centreY, double radius, double thickness, uint32_t colour) {
    const int reach = static_cast<int>(radius + thickness) + 1;
    for (int y = -reach; y <= reach; ++y) {
        for (int x = -reach; x <= reach; ++x) {
            const double fromLine = std::abs(std::hypot(x, y) - radius);
            blend(centreX + x, centreY + y, colour, thickness / 2 + 0.5 - fromLine);
        }
    }
}

void PixelPen::Text(std::string_view text, int x, int y, int scale, uint32_t colour) {
    for (const char character : text) {
        const DotFace::Glyph& glyph = DotFace::GlyphOf(character);
        for (int row = 0; row < DotFace::kRows; ++row) {
            for (int column = 0; column < DotFace::kColumns; ++column) {
                if (DotFace::HasDot(glyph, column, row))
                    Fill({x + column * scale, y + row * scale, scale, scale}, colour);
            }
        }
        x += DotFace::kAdvance * scale;
    }
}

PixelRect PixelPen::TextBounds(std::string_view text, int x, int y, int scale) {
    const int columns = static_cast<int>(text.size()) * DotFace::kAdvance - 1;
    return {x, y, std::max(columns, 0) * scale, DotFace::kRows * scale};
}

void PixelPen::blend(int x, int y, uint32_t colour, double coverage) {
    if (coverage <= 0 || x < 0 || y < 0 || x >= fBounds.width || y >= fBounds.height)
        return;
    uint8_t* bytes = pixel(x, y);
    for (int i = 0; i < 3; ++i) {
        const double wanted = static_cast<uint8_t>(colour >> (8 * i));
        bytes[i] =
            static_cast<uint8_t>(std::lround(bytes[i] + (wanted - bytes[i]) * std::min(coverage, 1.0)));
    }
}

} // namespace host
