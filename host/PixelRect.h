#pragma once

#include <algorithm>
#include <cstddef>

#include "Geometry.h"

namespace host {

/// A rectangle of whole pixels, for the pixels' side of a displays port. Its edges always fit an int.
struct PixelRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    bool operator==(const PixelRect&) const = default;

    bool IsEmpty() const { return width <= 0 || height <= 0; }

    /// The bytes of its pixels, 32 bits each.
    size_t Bytes() const { return static_cast<size_t>(width) * static_cast<size_t>(height) * 4; }

    /// What the two have in common; empty where they have nothing.
    PixelRect Intersection(const PixelRect& other) const {
        const int left = std::max(x, other.x);
        const int top = std::max(y, other.y);
        return {left, top, std::min(x + width, other.x + other.width) - left,
                std::min(y + height, other.y + other.height) - top};
    }
};

/// Larger places and extents are taken for mistakes. X11 ends at 32767, a JPEG at 65535.
inline constexpr double kMaximumCoordinate = 65535;

/// No picture takes more memory than this, so that a mistake can't take all of the machine's.
inline constexpr size_t kMaximumPictureBytes = size_t{256} << 20;

/// Truncates \p area to whole pixels. 0, or -1 with \p pixels as it was for an area that is empty, not a
/// number, or too far or too large to be meant.
inline int TruncateToPixels(const Rect& area, PixelRect& pixels) {
    const auto isPlace = [](double value) {
        return value >= -kMaximumCoordinate && value <= kMaximumCoordinate;
    };
    const auto isExtent = [](double value) { return value >= 1 && value <= kMaximumCoordinate; };
    if (!isPlace(area.x) || !isPlace(area.y) || !isExtent(area.width) || !isExtent(area.height))
        return -1;
    const PixelRect whole{static_cast<int>(area.x), static_cast<int>(area.y), static_cast<int>(area.width),
                          static_cast<int>(area.height)};
    if (whole.Bytes() > kMaximumPictureBytes)
        return -1;
    pixels = whole;
    return 0;
}

} // namespace host
