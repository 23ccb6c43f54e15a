#include "BuiltinPointer.h"

#include <cmath>

#include <gtest/gtest.h>

#include "SetClock.h"

namespace {

TEST(BuiltinPointer, TellsNothingBeforeTheFirstLook) {
    SetClock clock;
    host::BuiltinPointer pointer(clock);
    host::Point location;
    host::PointerPicture picture;
    EXPECT_EQ(pointer.Location(location), -1);
    EXPECT_EQ(pointer.Picture(picture), -1);
    EXPECT_FALSE(pointer.IsDrawnInFramebuffer());
}

TEST(BuiltinPointer, CirclesTheFirstDisplaysCentre) {
    SetClock clock;
    host::BuiltinPointer pointer(clock);
    host::Point previous{-1, -1};
    for (clock.microseconds = 0; clock.microseconds < 8'000'000; clock.microseconds += 500'000) {
        ASSERT_TRUE(pointer.IsVisible());
        host::Point location;
        ASSERT_EQ(pointer.Location(location), 0);
        EXPECT_NEAR(std::hypot(location.x - 640, location.y - 360), 240, 1);
        EXPECT_GT(std::hypot(location.x - previous.x, location.y - previous.y), 10);
        previous = location;
    }
}

TEST(BuiltinPointer, KeepsToItsLookWhileTheClockGoesOn) {
    SetClock clock;
    host::BuiltinPointer pointer(clock);
    pointer.IsVisible();
    const uint32_t seed = pointer.Seed();
    host::Point before;
    pointer.Location(before);
    clock.microseconds = 3'500'000;
    host::Point after;
    pointer.Location(after);
    EXPECT_EQ(pointer.Seed(), seed);
    EXPECT_EQ(after.x, before.x);
    pointer.IsVisible();
    EXPECT_NE(pointer.Seed(), seed);
}

TEST(BuiltinPointer, TakesTurnsBetweenTwoPremultipliedShapes) {
    SetClock clock;
    host::BuiltinPointer pointer(clock);
    int widths[3] = {};
    uint32_t seeds[3] = {};
    for (int turn = 0; turn < 3; ++turn) {
        clock.microseconds = turn * 3'000'000;
        pointer.IsVisible();
        host::PointerPicture picture;
        ASSERT_EQ(pointer.Picture(picture), 0);
        widths[turn] = picture.width;
        seeds[turn] = pointer.Seed();
        bool anyOpaque = false;
        bool anyBetween = false;
        for (int i = 0; i < picture.width * picture.height; ++i) {
            const uint8_t* argb = picture.pixels + i * 4;
            anyOpaque |= argb[0] == 255;
            anyBetween |= argb[0] > 0 && argb[0] < 255;
            ASSERT_TRUE(argb[1] <= argb[0] && argb[2] <= argb[0] && argb[3] <= argb[0]);
        }
        EXPECT_TRUE(anyOpaque && anyBetween);
        const auto hot =
            static_cast<int>(picture.hotSpot.y) * picture.width + static_cast<int>(picture.hotSpot.x);
        EXPECT_EQ(picture.pixels[hot * 4], 255) << "the hot spot is on the shape";
    }
    EXPECT_NE(widths[0], widths[1]);
    EXPECT_NE(seeds[0], seeds[1]);
    EXPECT_EQ(widths[0], widths[2]);
    EXPECT_EQ(seeds[0], seeds[2]);
}

} // namespace
