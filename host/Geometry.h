#pragma once

/// \file
/// Plain shapes that the ports exchange. The logic above a port truncates them to whole pixels.

namespace host {

/// A position in desktop coordinates: pixels, y downwards, from an origin that the machine chooses for all
/// displays.
struct Point {
    double x = 0;
    double y = 0;
};

/// A rectangle in desktop coordinates, right and bottom edges exclusive (x + width, y + height).
struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    bool operator==(const Rect&) const = default;
};

} // namespace host
