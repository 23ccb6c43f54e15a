#include <gtest/gtest.h>

#include <climits>
#include <cmath>

#include "zColor.h"
#include "zRect.h"

TEST(Rect, EdgesAreInclusive) {
    const zRect rect(640, 480);
    EXPECT_EQ(rect, zRect(0, 0, 639, 479));
    EXPECT_EQ(rect.Width(), 640);
    EXPECT_EQ(rect.Height(), 480);
    EXPECT_TRUE(rect.Contains(639, 479));
    EXPECT_FALSE(rect.Contains(640, 0));
    EXPECT_FALSE(zRect(0, 0).Valid());
    EXPECT_TRUE(zRect().Valid());
}

TEST(Rect, CombinesInEitherOrder) {
    const struct {
        zRect a, b, intersection, all;
        bool intersects;
    } cases[] = {
        {{0, 0, 9, 9}, {5, 5, 14, 14}, {5, 5, 9, 9}, {0, 0, 14, 14}, true},
        {{0, 0, 9, 9}, {9, 9, 14, 14}, {9, 9, 9, 9}, {0, 0, 14, 14}, true},
        {{0, 0, 9, 9}, {10, 0, 19, 9}, {10, 0, 9, 9}, {0, 0, 19, 9}, false},
        {{0, 0, 9, 9}, {2, 3, 4, 5}, {2, 3, 4, 5}, {0, 0, 9, 9}, true},
    };
    for (const auto& c : cases) {
        for (const bool swapped : {false, true}) {
            const zRect& a = swapped ? c.b : c.a;
            const zRect& b = swapped ? c.a : c.b;
            EXPECT_EQ(a.Intersects(b), c.intersects);
            EXPECT_EQ(a.Intersection(b), c.intersection);
            EXPECT_EQ(a.Intersection(b).Valid(), c.intersects);
            EXPECT_EQ(a.Union(b), c.all);
        }
    }
    EXPECT_TRUE(zRect(0, 0, 9, 9).Contains(zRect(2, 3, 4, 5)));
    EXPECT_FALSE(zRect(0, 0, 9, 9).Contains(zRect(5, 5, 10, 9)));
}

TEST(Rect, CentresWithIntegerHalves) {
    zRect child(801, 600);
    child.CenterInParent(zRect(-100, 20, 1178, 743));
    EXPECT_EQ(child.left, -100 + 1279 / 2 - 400);
    EXPECT_EQ(child.top, 20 + 724 / 2 - 300);
    EXPECT_EQ(child.Width(), 801);
    EXPECT_EQ(child.Height(), 600);
}

TEST(Rect, HostileNumbersWrap) {
    const zRect huge(INT_MIN, INT_MIN, INT_MAX, INT_MAX);
    EXPECT_EQ(huge.Width(), 0);
    EXPECT_EQ(zRect::Add(INT_MAX, 1), INT_MIN);
    EXPECT_EQ(zRect::Subtract(INT_MIN, 1), INT_MAX);
    zRect child = huge;
    child.CenterInParent(zRect(INT_MIN, INT_MIN));
    EXPECT_EQ(zRect::FromOriginAndSize(1e300, -1e300, std::nan(""), 2.9),
              zRect(INT_MAX, INT_MIN, INT_MAX - 1, INT_MIN + 1));
}

TEST(Rect, PlatformNumbersAreTruncated) {
    EXPECT_EQ(zRect::FromOriginAndSize(-1.9, 2.9, 10.9, 5.0), zRect(-1, 2, 8, 6));
}

TEST(Color, PacksInEveryOrder) {
    const zColor color(0x11, 0x22, 0x33, 0x44);
    EXPECT_EQ(color.RGBA(), 0x11223344U);
    EXPECT_EQ(color.ARGB(), 0x44112233U);
    EXPECT_EQ(color.ABGR(), 0x44332211U);
    EXPECT_EQ(color.BGRA(), 0x33221144U);
    EXPECT_EQ(zColor(color.RGBA()), color);
    zColor other;
    EXPECT_EQ(other.RGBA(), 0x000000FFU);
    other.SetARGB(color.ARGB());
    EXPECT_EQ(other, color);
    other = zColor();
    other.SetABGR(color.ABGR());
    EXPECT_EQ(other, color);
    other = zColor();
    other.SetBGRA(color.BGRA());
    EXPECT_EQ(other, color);
}

TEST(Color, BrightnessAndHue) {
    EXPECT_FLOAT_EQ(zColor(255, 255, 255).Brightness(), 1);
    EXPECT_FLOAT_EQ(zColor(255, 0, 0, 51).Brightness(), 1.0F / 3 / 5);
    const struct {
        zColor color;
        float hue, saturation, value;
    } cases[] = {
        {{255, 0, 0}, 0, 1, 1},     {{0, 255, 0}, 120, 1, 1},   {{0, 0, 255}, 240, 1, 1},
        {{255, 0, 255}, 300, 1, 1}, {{51, 51, 51}, 0, 0, 0.2F}, {{0, 0, 0}, 0, 0, 0},
    };
    for (const auto& c : cases) {
        float hue, saturation, value;
        c.color.GetHSV(hue, saturation, value);
        EXPECT_FLOAT_EQ(hue, c.hue);
        EXPECT_FLOAT_EQ(saturation, c.saturation);
        EXPECT_FLOAT_EQ(value, c.value);
    }
}
