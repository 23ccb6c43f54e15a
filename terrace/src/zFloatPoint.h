#pragma once

/// A position with fractions of a pixel, y downwards.
struct zFloatPoint {
    float x = 0;
    float y = 0;

    constexpr zFloatPoint() = default;
    constexpr zFloatPoint(float px, float py) : x(px), y(py) {}

    constexpr bool operator==(const zFloatPoint&) const = default;
};
