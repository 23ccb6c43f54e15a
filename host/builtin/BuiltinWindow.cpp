#include "BuiltinWindow.h"

namespace host {

const std::array<BuiltinWindow, 2> kBuiltinWindows{{
    {"WINDOW 1", "Test Lift", "test-lift", {70, 50, 240, 420}, 240, 136, 6'000'000},
    {"WINDOW 2", "Test Slide", "test-slide", {1330, 50, 924, 110}, 200, 110, 8'000'000},
}};

PixelRect BuiltinWindow::Place(int64_t microseconds) const {
    const int64_t half = period / 2;
    const int64_t phase = microseconds % period;
    const int64_t way = phase < half ? phase : period - phase;
    return {ground.x + static_cast<int>((ground.width - width) * way / half),
            ground.y + static_cast<int>((ground.height - height) * way / half), width, height};
}

PixelRect BuiltinWindow::ChangedArea(int64_t before, int64_t after) const {
    const int64_t half = period / 2;
    if (after < before || after - before >= half)
        return ground;
    // It can't have come further than this, either way.
    const int x = static_cast<int>((ground.width - width) * (after - before) / half) + 1;
    const int y = static_cast<int>((ground.height - height) * (after - before) / half) + 1;
    const PixelRect place = Place(before);
    return PixelRect{place.x - x, place.y - y, width + 2 * x, height + 2 * y}.Intersection(ground);
}

} // namespace host
