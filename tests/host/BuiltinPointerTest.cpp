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

} // namespace
