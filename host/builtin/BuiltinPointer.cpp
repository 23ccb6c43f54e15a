#include "BuiltinPointer.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string_view>

namespace host {
namespace {

constexpr Point kCentre{640, 360};
constexpr double kOrbitRadius = 240;
constexpr int64_t kOrbitTime = 8'000'000; ///< Microseconds for one round.
constexpr int64_t kShapeTime = 3'000'000; ///< Microseconds until the other shape's turn.

/// X is the outline, o the filling, - the shadow.
constexpr std::string_view kArrowRows[] = {
    "X              ", "XX             ", "XoX            ", "XooX           ", "XoooX          ",
    "XooooX         ", "XoooooX        ", "XooooooX       ", "XoooooooX      ", "XooooooooX     ",
    "XoooooooooX-   ", "XoooooXXXXXX-  ", "XooXooX------- ", "XoX XooX-      ", "XX- XooX-      ",
    "X-   XooX-     ", " -   XooX-     ", "      XX--     ", "       --      ",
};
constexpr int kArrowWidth = 15;
constexpr int kArrowHeight = 19;
constexpr uint8_t kShadowAlpha = 0x60;

constexpr int kRingExtent = 33;
constexpr uint8_t kRingColour[3] = {0xFF, 0x80, 0x10}; // r, g, b

/// A pixel of a pointer's picture: a, r, g, b with the colours multiplied by alpha.
void append(std::vector<uint8_t>& pixels, double alpha, const uint8_t (&colour)[3]) {
    pixels.push_back(static_cast<uint8_t>(std::lround(alpha * 255)));
    for (const uint8_t channel : colour)
        pixels.push_back(static_cast<uint8_t>(std::lround(alpha * channel)));
}

} // namespace

BuiltinPointer::BuiltinPointer(Clock& clock) : fClock(clock), fArrow(arrow()), fRing(ring()) {}

bool BuiltinPointer::IsVisible() {
    fLook = fClock.MicrosecondsSinceBoot();
    return true;
}

int BuiltinPointer::Location(Point& location) {
    if (fLook < 0)
        return -1;
    const double angle = 2 * std::numbers::pi * static_cast<double>(fLook % kOrbitTime) / kOrbitTime;
    location = {std::round(kCentre.x + kOrbitRadius * std::cos(angle)),
                std::round(kCentre.y + kOrbitRadius * std::sin(angle))};
    return 0;
}

uint32_t BuiltinPointer::Seed() {
    return &shape() == &fArrow ? 1 : 2;
}

int BuiltinPointer::Picture(PointerPicture& picture) {
    if (fLook < 0)
        return -1;
    const Shape& current = shape();
    picture = {current.pixels.data(), current.width, current.height, current.hotSpot};
    return 0;
}

BuiltinPointer::Shape BuiltinPointer::arrow() {
    Shape shape{{}, kArrowWidth, kArrowHeight, {0, 0}};
    for (const std::string_view row : kArrowRows) {
        for (int column = 0; column < kArrowWidth; ++column) {
            const char dot = row[static_cast<size_t>(column)];
            const uint8_t level = dot == 'o' ? 0xFF : 0;
            const double alpha = dot == ' ' ? 0 : dot == '-' ? kShadowAlpha / 255.0 : 1;
            append(shape.pixels, alpha, {level, level, level});
        }
    }
    return shape;
}

/// A smoothed ring around a dot, which is its hot spot.
BuiltinPointer::Shape BuiltinPointer::ring() {
    constexpr int kMiddle = kRingExtent / 2;
    constexpr double kRadius = 13;
    constexpr double kHalfLine = 2;
    constexpr double kDot = 2;
    Shape shape{{}, kRingExtent, kRingExtent, {kMiddle, kMiddle}};
    for (int y = -kMiddle; y <= kMiddle; ++y) {
        for (int x = -kMiddle; x <= kMiddle; ++x) {
            const double distance = std::hypot(x, y);
            const double onRing = kHalfLine + 0.5 - std::abs(distance - kRadius);
            const double onDot = kDot + 0.5 - distance;
            append(shape.pixels, std::clamp(std::max(onRing, onDot), 0.0, 1.0), kRingColour);
        }
    }
    return shape;
}

const BuiltinPointer::Shape& BuiltinPointer::shape() const {
    return fLook / kShapeTime % 2 ? fRing : fArrow;
}

} // namespace host
