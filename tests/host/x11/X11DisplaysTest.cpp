#include "X11Fixture.h"

namespace {

class X11Displays : public X11Fixture {
  protected:
    host::DisplayId IdOf(const std::string& name) {
        for (const host::DisplayId id : Ids()) {
            if (Displays().ProductName(id) == name)
                return id;
        }
        return 0;
    }
};

TEST_F(X11Displays, AreTheMonitors) {
    NEED_X11("600x300x24");
    ASSERT_TRUE(painter->SetMonitor("RIGHT \xE2\x82\xAC", "200/100x150/100+300+20"));
    ASSERT_TRUE(painter->SetMonitor("LEFT \xFC", "300/100x300/100+0+0"));
    painter->Fill(0, 0, 300, 300, 0x112233);
    painter->Fill(300, 0, 300, 300, 0x445566);
    const host::DisplayId left = IdOf("LEFT \xC3\xBC"); // from Latin-1
    const host::DisplayId right = IdOf("RIGHT \xE2\x82\xAC");
    ASSERT_NE(left, 0U);
    ASSERT_NE(right, 0U);
    EXPECT_EQ(Displays().Bounds(left), (host::Rect{0, 0, 300, 300}));
    EXPECT_EQ(Displays().Bounds(right), (host::Rect{300, 20, 200, 150}));
    EXPECT_EQ(Displays().Bounds(12345), (host::Rect{0, 0, 0, 0}));
    EXPECT_EQ(Displays().ProductName(12345), "");
    EXPECT_EQ(Displays().MainDisplay(), left) << "at the origin";
    host::Image image;
    ASSERT_EQ(Displays().Picture(Displays().Bounds(right), image), 0);
    EXPECT_EQ(ColourAt(image, 0, 0), 0x445566U);
    ASSERT_EQ(Displays().Picture(Displays().Bounds(left), image), 0);
    EXPECT_EQ(ColourAt(image, 299, 299), 0x112233U);

    ASSERT_TRUE(painter->SetMonitor("*THREE", "50/100x50/100+100+100"));
    EXPECT_EQ(Displays().MainDisplay(), IdOf("THREE"));
    painter->Xrandr("--delmonitor THREE");
    painter->Xrandr("--delmonitor 'LEFT \xFC'");
    EXPECT_EQ(Ids(), (std::vector{right, IdOf("screen")})) << "while others come and go";
    EXPECT_EQ(Displays().Bounds(left).width, 0);
    ASSERT_TRUE(painter->SetMonitor("LEFT \xFC", "10/100x10/100+0+0"));
    EXPECT_EQ(Displays().Bounds(left).width, 10) << "it is back";
}

TEST_F(X11Displays, AreTheWholeScreenWithoutRandR) {
    NEED_X11("600x300x24", {"-extension", "RANDR"});
    const auto ids = Ids();
    ASSERT_EQ(ids.size(), 1U);
    EXPECT_EQ(Displays().MainDisplay(), ids[0]);
    EXPECT_EQ(Displays().ProductName(ids[0]), "X screen");
    EXPECT_EQ(Displays().Bounds(ids[0]), (host::Rect{0, 0, 600, 300}));
}

TEST(X11Host, SaysWhyItCannotBeOpened) {
    std::string whyNot;
    EXPECT_EQ(host::X11Host::Open(":54321", whyNot), nullptr);
    EXPECT_NE(whyNot.find(":54321"), std::string::npos);
    EXPECT_EQ(host::X11Host::Open("no display's name", whyNot), nullptr);

    XServer palette("320x240x8");
    if (!palette.Running())
        SKIP_OR_FAIL(palette.WhyNot());
    EXPECT_EQ(host::X11Host::Open(palette.Display().c_str(), whyNot), nullptr);
    EXPECT_NE(whyNot.find("true colours"), std::string::npos);
}

} // namespace
