#include <gtest/gtest.h>

#include <climits>
#include <cmath>

#include "zColor.h"
#include "zRect.h"

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
        for (const auto& [a, b] : {std::pair(c.a, c.b), std::pair(c.b, c.a)}) {
            EXPECT_EQ(a.Intersects(b), c.intersects);
            EXPECT_EQ(a.Intersection(b), c.intersection);
            EXPECT_EQ(a.Intersection(b).Valid(), c.intersects);
            EXPECT_EQ(a.Union(b), c.all);
            EXPECT_EQ(a.Contains(b), b == c.intersection);
        }
    }
}

TEST(Rect, HostileNumbersWrap) {
    zRect child(INT_MIN, INT_MIN, INT_MAX, INT_MAX);
    EXPECT_EQ(child.Width(), 0);
    child.CenterInParent(zRect(INT_MIN, INT_MIN));
    child = zRect(801, 600);
    child.CenterInParent(zRect(-100, 20, 1178, 743));
    EXPECT_EQ(child, zRect(139, 82, 939, 681)) << "centred with integer halves";
    EXPECT_EQ(zRect::FromOriginAndSize(-1.9, 2.9, 10.9, 5.0), zRect(-1, 2, 8, 6)) << "others are truncated";
    EXPECT_EQ(zRect::FromOriginAndSize(1e300, -1e300, std::nan(""), 2.9),
              zRect(INT_MAX, INT_MIN, INT_MAX - 1, INT_MIN + 1));
}

TEST(Color, PacksAndUnpacksInEveryOrder) {
    const zColor color(0x11223344U);
    EXPECT_EQ(color, zColor(0x11, 0x22, 0x33, 0x44));
    EXPECT_EQ(color.ARGB(), 0x44112233U);
    EXPECT_EQ(color.ABGR(), 0x44332211U);
    EXPECT_EQ(color.BGRA(), 0x33221144U);
    zColor argb, abgr, bgra;
    argb.SetARGB(color.ARGB());
    abgr.SetABGR(color.ABGR());
    bgra.SetBGRA(color.BGRA());
    for (const zColor& other : {argb, abgr, bgra})
        EXPECT_EQ(other, color);
}
