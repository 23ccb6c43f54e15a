#include <gtest/gtest.h>

#include "vnFocusRect.h"

namespace {

using Preset = vnFocusRect::Preset;

constexpr zRect kDisplay{0, 0, 1919, 1079};

TEST(FocusRect, EvaluatesPresetsAgainstTheDisplay) {
    constexpr zRect kSecond{1920, 100, 1920 + 1023, 100 + 767};
    struct {
        unsigned int options;
        zRect rect;
        zRect display;
        zRect expected;
    } const cases[] = {
        {1, {10, 10, 20, 20}, kDisplay, kDisplay},
        {1 | 2, {800, 600}, kDisplay, kDisplay},
        {2, {800, 600}, kDisplay, {560, 240, 1359, 839}},
        {2, {320, 240}, kSecond, {1920 + 352, 100 + 264, 1920 + 671, 100 + 503}},
        {2, {5, 3}, {0, 0, 9, 9}, {3, 4, 7, 6}},
        {2, {0, 0}, kDisplay, kDisplay}, // never set: one pixel
        {2, {2, 2}, kDisplay, {959, 539, 960, 540}},
        {6, {1, 600}, kDisplay, kDisplay}, // either extent is enough
        {6, {800, 1}, kDisplay, kDisplay},
        {2, {3000, 100}, kDisplay, {-540, 490, 2459, 589}}, // larger than the display
        {4, {11, 22, 333, 444}, kDisplay, {11, 22, 333, 444}},
        {4, {-5, -6, 5000, 6000}, kDisplay, {-5, -6, 5000, 6000}},
        {4, {0, 0}, kSecond, kSecond},
        {0, {1, 2, 3, 4}, kDisplay, {1, 2, 3, 4}},
    };
    for (const auto& one : cases) {
        vnFocusRect focus;
        zRecord preset;
        Preset::SetOptions(preset, one.options);
        Preset::SetRect(preset, one.rect);
        focus.SetCurrent(preset);
        focus.SetMaximumRect(one.display);
        zRect rect;
        EXPECT_EQ(focus.Rect(rect), 0);
        EXPECT_EQ(rect, one.expected)
            << one.options << ": " << rect.left << "," << rect.top << "," << rect.right << "," << rect.bottom;
    }
}

} // namespace
