#include <array>

#include "X11Fixture.h"

namespace {

class X11Pointer : public X11Fixture {
  protected:
    /// A look, as x, y, extents and hot spot; empty without a pointer.
    std::vector<double> Look() {
        host::Point location;
        host::PointerPicture picture;
        if (!Pointer().IsVisible()) {
            EXPECT_EQ(Pointer().Location(location), -1);
            EXPECT_EQ(Pointer().Picture(picture), -1);
            return {};
        }
        EXPECT_EQ(Pointer().Location(location), 0);
        EXPECT_EQ(Pointer().Picture(picture), 0);
        return {location.x, location.y, picture.hotSpot.x, picture.hotSpot.y};
    }
    using Argb = std::array<uint8_t, 4>;
    Argb PixelAt(int x, int y) {
        host::PointerPicture picture;
        if (Pointer().Picture(picture) != 0 || x >= picture.width || y >= picture.height)
            return {};
        const uint8_t* argb = picture.pixels + (y * picture.width + x) * 4;
        return {argb[0], argb[1], argb[2], argb[3]};
    }
};

TEST_F(X11Pointer, IsWhatTheServerShows) {
    NEED_X11("320x240x24");
    painter->Fill(0, 0, 320, 240, 0x204060);
    painter->SetPointer(12, 3, 5, 0xFF8040);
    painter->MovePointer(101, 77);
    EXPECT_EQ(Look(), (std::vector<double>{101, 77, 3, 5}));
    EXPECT_EQ(PixelAt(0, 0), (Argb{0xFF, 0xFF, 0x80, 0x40}));
    EXPECT_EQ(PixelAt(11, 11), (Argb{0xFF, 0xFF, 0x80, 0x40}));
    EXPECT_EQ(PixelAt(12, 0), (Argb{0, 0, 0, 0}));
    EXPECT_FALSE(Pointer().IsDrawnInFramebuffer());
    EXPECT_EQ(ColourOnScreen(102, 78), 0x204060U) << "it is not in the pictures";

    const uint32_t seed = Pointer().Seed();
    painter->MovePointer(5, 6);
    EXPECT_EQ(Look(), (std::vector<double>{5, 6, 3, 5}));
    EXPECT_EQ(Pointer().Seed(), seed);
    painter->SetPointer(0, 0, 0, 0xFFFFFF);
    EXPECT_TRUE(Look().empty()) << "no pixel of it can be seen";
    painter->SetPointer(14, 1, 2, 0xFF8040);
    EXPECT_EQ(Look(), (std::vector<double>{5, 6, 1, 2}));
    EXPECT_NE(Pointer().Seed(), seed);
}

TEST_F(X11Pointer, IsNeverVisibleWithoutXFixes) {
    NEED_X11("320x240x24", {"-extension", "XFIXES"});
    EXPECT_TRUE(Look().empty());
    host::Image image;
    EXPECT_EQ(Displays().Picture({0, 0, 16, 16}, image), 0);
}

} // namespace
