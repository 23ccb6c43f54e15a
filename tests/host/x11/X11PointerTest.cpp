#include <array>

#include "X11Fixture.h"

namespace {

class X11Pointer : public X11Fixture {
  protected:
    host::Pointer& Pointer() { return machine->PointerPort(); }

    std::array<uint8_t, 4> PixelAt(const host::PointerPicture& picture, int x, int y) {
        const uint8_t* argb = picture.pixels + (y * picture.width + x) * 4;
        return {argb[0], argb[1], argb[2], argb[3]};
    }
};

using Argb = std::array<uint8_t, 4>;

TEST_F(X11Pointer, IsWhatTheServerShows) {
    NEED_X11("320x240x24");
    painter->SetPointer(12, 3, 5, 0xFF8040);
    painter->MovePointer(101, 77);
    ASSERT_TRUE(Pointer().IsVisible());
    EXPECT_FALSE(Pointer().IsDrawnInFramebuffer());
    host::Point location;
    ASSERT_EQ(Pointer().Location(location), 0);
    EXPECT_EQ(location.x, 101);
    EXPECT_EQ(location.y, 77);
    host::PointerPicture picture;
    ASSERT_EQ(Pointer().Picture(picture), 0);
    ASSERT_GE(picture.width, 12);
    ASSERT_GE(picture.height, 12);
    EXPECT_EQ(picture.hotSpot.x, 3);
    EXPECT_EQ(picture.hotSpot.y, 5);
    EXPECT_EQ(PixelAt(picture, 0, 0), (Argb{0xFF, 0xFF, 0x80, 0x40}));
    EXPECT_EQ(PixelAt(picture, 11, 11), (Argb{0xFF, 0xFF, 0x80, 0x40}));
    if (picture.width > 12) {
        EXPECT_EQ(PixelAt(picture, 12, 0), (Argb{0, 0, 0, 0}));
    }
}

TEST_F(X11Pointer, ChangesItsSeedWithItsShapeAlone) {
    NEED_X11("320x240x24");
    painter->SetPointer(12, 3, 5, 0xFF8040);
    ASSERT_TRUE(Pointer().IsVisible());
    const uint32_t seed = Pointer().Seed();
    painter->MovePointer(5, 6);
    ASSERT_TRUE(Pointer().IsVisible());
    EXPECT_EQ(Pointer().Seed(), seed);
    painter->SetPointer(14, 3, 5, 0xFF8040);
    ASSERT_TRUE(Pointer().IsVisible());
    EXPECT_NE(Pointer().Seed(), seed);
}

TEST_F(X11Pointer, IsHiddenWhenNoPixelOfItCanBeSeen) {
    NEED_X11("320x240x24");
    painter->SetPointer(0, 0, 0, 0xFFFFFF);
    EXPECT_FALSE(Pointer().IsVisible());
    host::Point location;
    host::PointerPicture picture;
    EXPECT_EQ(Pointer().Location(location), -1);
    EXPECT_EQ(Pointer().Picture(picture), -1);
    painter->SetPointer(4, 0, 0, 0xFFFFFF);
    EXPECT_TRUE(Pointer().IsVisible());
}

TEST_F(X11Pointer, IsNotInThePictures) {
    NEED_X11("320x240x24");
    painter->Fill(0, 0, 320, 240, 0x204060);
    painter->SetPointer(20, 0, 0, 0xFFFFFF);
    painter->MovePointer(50, 50);
    host::Image image;
    ASSERT_EQ(Displays().Picture({0, 0, 320, 240}, image), 0);
    EXPECT_EQ(ColourAt(image, 55, 55), 0x204060U);
}

TEST_F(X11Pointer, IsNeverVisibleWithoutXFixes) {
    NEED_X11("320x240x24", {"-extension", "XFIXES"});
    EXPECT_FALSE(Pointer().IsVisible());
    host::Point location;
    EXPECT_EQ(Pointer().Location(location), -1);
    host::Image image;
    EXPECT_EQ(Displays().Picture({0, 0, 16, 16}, image), 0);
}

} // namespace
