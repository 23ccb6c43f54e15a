#include "BuiltinPointer.h"

#include <cmath>

#include <gtest/gtest.h>

#include "SetClock.h"

namespace {

TEST(BuiltinPointer, KeepsToItsLookWhileTheClockGoesOn) {
    SetClock clock;
    host::BuiltinPointer pointer(clock);
    host::Point before;
    host::PointerPicture picture;
    EXPECT_EQ(pointer.Location(before), -1) << "nobody has looked yet";
    EXPECT_EQ(pointer.Picture(picture), -1);
    pointer.IsVisible();
    const uint32_t seed = pointer.Seed();
    pointer.Location(before);
    EXPECT_NEAR(std::hypot(before.x - 640, before.y - 360), 240, 1)
        << "it circles the first display's centre";
    clock.microseconds = 3'500'000;
    host::Point after;
    pointer.Location(after);
    EXPECT_EQ(pointer.Seed(), seed);
    EXPECT_EQ(after.x, before.x);
    pointer.IsVisible();
    pointer.Location(after);
    EXPECT_NE(pointer.Seed(), seed);
    EXPECT_NE(after.x, before.x);
}

TEST(BuiltinPointer, TakesTurnsBetweenTwoPremultipliedShapes) {
    SetClock clock;
    host::BuiltinPointer pointer(clock);
    uint32_t seeds[3] = {};
    for (int turn = 0; turn < 3; ++turn) {
        clock.microseconds = turn * 3'000'000;
        pointer.IsVisible();
        host::PointerPicture picture;
        ASSERT_EQ(pointer.Picture(picture), 0);
        seeds[turn] = pointer.Seed();
        bool anyBetween = false;
        for (int i = 0; i < picture.width * picture.height; ++i) {
            const uint8_t* argb = picture.pixels + i * 4;
            anyBetween |= argb[0] > 0 && argb[0] < 255;
            ASSERT_TRUE(argb[1] <= argb[0] && argb[2] <= argb[0] && argb[3] <= argb[0]);
        }
        EXPECT_TRUE(anyBetween);
        const auto hot =
            static_cast<int>(picture.hotSpot.y) * picture.width + static_cast<int>(picture.hotSpot.x);
        EXPECT_EQ(picture.pixels[hot * 4], 255) << "the hot spot is on the shape";
    }
    EXPECT_NE(seeds[0], seeds[1]);
    EXPECT_EQ(seeds[0], seeds[2]);
}

} // namespace
