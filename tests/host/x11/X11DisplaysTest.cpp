#include <algorithm>

#include "X11Fixture.h"

namespace {

class X11Displays : public X11Fixture {
  protected:
    /// \p place as in "300/100x200/100+10+20", extents with their millimetres; a star marks the primary
    /// monitor.
    void SetMonitor(const std::string& name, const std::string& place) {
        ASSERT_EQ(painter->Xrandr("--setmonitor '" + name + "' " + place + " none"), 0)
            << "is xrandr installed?";
    }
    std::vector<host::DisplayId> Ids() {
        std::vector<host::DisplayId> ids;
        EXPECT_EQ(Displays().ActiveDisplays(ids), 0);
        return ids;
    }
    host::DisplayId IdOf(const std::string& name) {
        for (const host::DisplayId id : Ids()) {
            if (Displays().ProductName(id) == name)
                return id;
        }
        return 0;
    }
    void ExpectBounds(host::DisplayId id, double x, double y, double width, double height) {
        const host::Rect bounds = Displays().Bounds(id);
        EXPECT_EQ(bounds.x, x);
        EXPECT_EQ(bounds.y, y);
        EXPECT_EQ(bounds.width, width);
        EXPECT_EQ(bounds.height, height);
    }
};

TEST_F(X11Displays, AreTheMonitors) {
    NEED_X11("600x300x24");
    SetMonitor("RIGHT \xE2\x82\xAC", "200/100x150/100+300+20");
    SetMonitor("LEFT \xFC", "300/100x300/100+0+0");
    const host::DisplayId left = IdOf("LEFT \xC3\xBC"); // from Latin-1
    const host::DisplayId right = IdOf("RIGHT \xE2\x82\xAC");
    ASSERT_NE(left, 0U);
    ASSERT_NE(right, 0U);
    ExpectBounds(left, 0, 0, 300, 300);
    ExpectBounds(right, 300, 20, 200, 150);
    ExpectBounds(12345, 0, 0, 0, 0);
    EXPECT_EQ(Displays().ProductName(0x1FFFFFF0), "");
    EXPECT_EQ(Displays().MainDisplay(), left);
}

TEST_F(X11Displays, KeepTheirIdsWhileOthersComeAndGo) {
    NEED_X11("600x300x24");
    SetMonitor("ONE", "300/100x300/100+0+0");
    SetMonitor("TWO", "300/100x300/100+300+0");
    const host::DisplayId two = IdOf("TWO");
    SetMonitor("*THREE", "50/100x50/100+100+100");
    EXPECT_EQ(IdOf("TWO"), two);
    EXPECT_EQ(Displays().MainDisplay(), IdOf("THREE"));
    painter->Xrandr("--delmonitor ONE");
    painter->Xrandr("--delmonitor THREE");
    EXPECT_EQ(IdOf("TWO"), two);
    ExpectBounds(two, 300, 0, 300, 300);
    EXPECT_EQ(IdOf("ONE"), 0U);
}

TEST_F(X11Displays, ShowTheirOwnPixels) {
    NEED_X11("600x300x24");
    SetMonitor("LEFT", "300/100x300/100+0+0");
    SetMonitor("RIGHT", "300/100x300/100+300+0");
    painter->Fill(0, 0, 300, 300, 0x112233);
    painter->Fill(300, 0, 300, 300, 0x445566);
    host::Image image;
    ASSERT_EQ(Displays().Picture(Displays().Bounds(IdOf("RIGHT")), image), 0);
    EXPECT_EQ(ColourAt(image, 0, 0), 0x445566U);
    ASSERT_EQ(Displays().Picture(Displays().Bounds(IdOf("LEFT")), image), 0);
    EXPECT_EQ(ColourAt(image, 299, 299), 0x112233U);
}

TEST_F(X11Displays, AreTheWholeScreenWithoutRandR) {
    NEED_X11("600x300x24", {"-extension", "RANDR"});
    const auto ids = Ids();
    ASSERT_EQ(ids.size(), 1U);
    EXPECT_NE(ids[0], 0U);
    EXPECT_EQ(Displays().MainDisplay(), ids[0]);
    EXPECT_NE(Displays().ProductName(ids[0]), "");
    ExpectBounds(ids[0], 0, 0, 600, 300);
}

TEST(X11Host, SaysWhyItCannotBeOpened) {
    std::string whyNot;
    EXPECT_EQ(host::X11Host::Open(":54321", whyNot), nullptr);
    EXPECT_NE(whyNot.find(":54321"), std::string::npos);
    EXPECT_EQ(host::X11Host::Open("no display's name", whyNot), nullptr);
}

TEST_F(X11Displays, OfAScreenWithoutTrueColoursAreRefused) {
    XServer palette("320x240x8");
    if (!palette.Running())
        SKIP_OR_FAIL(palette.WhyNot());
    std::string whyNot;
    EXPECT_EQ(host::X11Host::Open(palette.Display().c_str(), whyNot), nullptr);
    EXPECT_NE(whyNot.find("true colours"), std::string::npos);
}

} // namespace
