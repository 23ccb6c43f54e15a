#include "zColor.h"

#include <algorithm>

namespace {
constexpr float kFull = 255;
}

float zColor::Brightness() const {
    const auto sum = static_cast<float>(red + green + blue);
    return sum / (3 * kFull) * (static_cast<float>(alpha) / kFull);
}

void zColor::GetHSV(float& hue, float& saturation, float& value) const {
    const int most = std::max({red, green, blue});
    const int range = most - std::min({red, green, blue});
    value = static_cast<float>(most) / kFull;
    saturation = most ? static_cast<float>(range) / static_cast<float>(most) : 0;
    hue = 0;
    if (range == 0)
        return;

    // A sextant of the colour circle on either side of each primary.
    const auto sextants = [range](int difference) {
        return static_cast<float>(difference) / static_cast<float>(range);
    };
    if (most == red)
        hue = sextants(green - blue);
    else if (most == green)
        hue = 2 + sextants(blue - red);
    else
        hue = 4 + sextants(red - green);
    hue = 60 * (hue < 0 ? hue + 6 : hue);
}
