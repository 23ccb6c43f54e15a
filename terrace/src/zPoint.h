#pragma once

/// A position in whole pixels, y downwards.
struct zPoint {
    int x = 0;
    int y = 0;

    constexpr zPoint() = default;
    constexpr zPoint(int px, int py) : x(px), y(py) {}

    constexpr bool operator==(const zPoint&) const = default;
};
