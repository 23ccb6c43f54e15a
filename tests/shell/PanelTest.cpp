#include "ShellFixture.h"

namespace {

using testing::ElementsAre;
using enum vnControl;

// Presets by their place in the popup.
constexpr int kFullScreen = 0;
constexpr int kRegion = 1;
constexpr int kCentered320 = 3;
constexpr int kCustom = 4;
constexpr int kWindowItem = 3; // Behind two displays and a separator.

class PanelTest : public ShellTest {
  protected:
    PanelTest() { Launch(); }
};

TEST_F(PanelTest, LimitsTypedSizesToTheDisplay) {
    panel().Choose(fSelectPopup, kCustom);
    const struct {
        const char *width, *height, *shownWidth, *shownHeight, *picture;
    } kCases[] = {
        {"20", "10", "20", "10", "22,19,20x10"},  {"0", "10", "64", "10", "0,19,64x10"},
        {"65", "49", "64", "48", "0,0,64x48"},    {"1", "2", "64", "2", "0,23,64x2"},
        {"2", "2", "2", "2", "31,23,2x2"},        {"-5", "99999999999999", "64", "48", "0,0,64x48"},
        {"rubbish", "", "64", "48", "0,0,64x48"},
    };
    for (const auto& c : kCases) {
        panel().Type(widthTextField, c.width);
        panel().Type(heightTextField, c.height);
        // Each field counts by itself: the second entry is judged with what the first one became.
        EXPECT_EQ(State(widthTextField).text, c.shownWidth) << c.width << " x " << c.height;
        EXPECT_EQ(State(heightTextField).text, c.shownHeight) << c.width << " x " << c.height;
        EXPECT_EQ(Picture(), c.picture) << c.width << " x " << c.height;
    }
    EXPECT_EQ(SelectedTitle(fSelectPopup), "vn_custom_centered");
}

TEST_F(PanelTest, FollowsTheDisplayAndBeginsItsPresetsAnew) {
    panel().Choose(fSelectPopup, kCustom);
    panel().Type(widthTextField, "20");
    panel().Choose(fDevicePopup, 1);
    EXPECT_EQ(Picture(), "64,10,100x80");
    EXPECT_EQ(SelectedTitle(fSelectPopup), "vn_full_screen");
    EXPECT_EQ(State(fSelectPopup).items.size(), 5U) << "no preset of the other display is left";
    panel().Choose(fSelectPopup, kCustom);
    EXPECT_EQ(State(widthTextField).text, "100");
    panel().Choose(fSelectPopup, kCentered320);
    EXPECT_EQ(State(widthTextField).text, "320") << "a preset's size isn't limited, only a typed one";
}

TEST_F(PanelTest, ChoosesWindowsByApplication) {
    panel().Choose(fDevicePopup, kWindowItem);
    EXPECT_TRUE(IsOnWindow());
    EXPECT_EQ(controller.Front().CurrentDeviceIndex(), -1);
    EXPECT_THAT(Titles(fSelectPopup), ElementsAre("Editor", "Browser"))
        << "one without windows isn't offered";
    EXPECT_THAT(Titles(fWindowPopup), ElementsAre("Letter", "Notes"));
    EXPECT_EQ(State(selectTextField).text, "vn_application_label");
    EXPECT_EQ(Picture(), "5,6,30x20");
    panel().Choose(fWindowPopup, 1);
    EXPECT_EQ(Picture(), "50,8,40x30");
    panel().Choose(fSelectPopup, 1);
    EXPECT_THAT(Titles(fWindowPopup), ElementsAre("News"));
    EXPECT_EQ(Picture(), "70,10,24x16");

    // The window is closed between listing and choosing: nothing changes.
    panel().Choose(fSelectPopup, 0);
    machine.applications.clear();
    panel().Choose(fSelectPopup, 1);
    EXPECT_THAT(Titles(fWindowPopup), ElementsAre());
    EXPECT_TRUE(IsOnWindow());

    panel().Choose(fDevicePopup, 0);
    EXPECT_FALSE(IsOnWindow());
    EXPECT_EQ(State(selectTextField).text, "vn_selection_label");
}

TEST_F(PanelTest, KeepsOneOfVideoAndAudioOn) {
    panel().Switch(captureAudio);
    EXPECT_FALSE(controller.Front().AudioIsEnabled());
    panel().SetHidden(captureVideo, false);
    panel().Switch(captureVideo);
    EXPECT_TRUE(State(captureVideo).on) << "both off: video is switched on again";
    EXPECT_TRUE(controller.Front().VideoIsEnabled());
    panel().Switch(captureAudio);
    panel().Switch(captureVideo);
    EXPECT_FALSE(controller.Front().VideoIsEnabled());
    EXPECT_FALSE(State(fDevicePopup).enabled);
    panel().Switch(captureAudio);
    EXPECT_TRUE(State(captureAudio).on) << "both off: audio is switched on again";
    EXPECT_TRUE(controller.Front().AudioIsEnabled());
}

TEST_F(PanelTest, ServesTheRegionThatTheUserDraws) {
    panel().Choose(fDevicePopup, 1);
    panel().Choose(fSelectPopup, kRegion);
    panel().Press(selectRegionButton);
    EXPECT_FALSE(State(selectRegionButton).enabled);
    vnRegionSelector& overlay = *controller.RegionSelector();
    EXPECT_TRUE(overlay.IsShown());

    // 21 by 30 pixels, 7 above the bottom edge of a display at (64, 10) of 100 by 80.
    overlay.View().SetSelection({3, 7, 21, 30});
    overlay.View().KeyDown(13);
    EXPECT_TRUE(State(selectRegionButton).enabled);
    EXPECT_EQ(Picture(), "67,53,22x30") << "of an even width";

    // It begins where it ended; a cancelled one changes nothing.
    machine.Tick(100);
    EXPECT_FALSE(overlay.IsShown());
    panel().Press(selectRegionButton);
    EXPECT_EQ(overlay.View().Selection(), (host::Rect{3, 7, 22, 30}));
    overlay.View().SetSelection({0, 0, 50, 50});
    overlay.View().CancelOperation();
    EXPECT_TRUE(overlay.GetSelectionWasCancelled());
    EXPECT_TRUE(State(selectRegionButton).enabled);
    EXPECT_EQ(Picture(), "67,53,22x30");

    panel().Choose(fDevicePopup, 0);
    EXPECT_EQ(Picture(), "0,0,64x48");
}

TEST_F(PanelTest, SurvivesADisplayThatGoesWhileTheOverlayIsUp) {
    panel().Choose(fDevicePopup, 1);
    panel().Choose(fSelectPopup, kRegion);
    panel().Press(selectRegionButton);
    machine.displays.resize(1);
    controller.RegionSelector()->View().KeyDown(13);
    machine.Tick(100);
    EXPECT_TRUE(State(selectRegionButton).enabled);
    panel().Press(selectRegionButton);
    controller.RegionSelector()->View().CancelOperation();
}

class StatusMenuTest : public ShellTest {
  protected:
    StatusMenuTest() {
        Launch();
        interface.OpenStatusMenu();
    }
    /// As in "Letter", "Editor > Letter", "(disabled)" and "-".
    std::vector<std::string> Items() const {
        std::vector<std::string> items;
        for (const vnMenuItem& item : interface.StatusMenu()) {
            items.push_back(item.isSeparator ? "-" : item.enabled ? item.title : "(" + item.title + ")");
            for (const vnMenuItem& entry : item.submenu)
                items.push_back(item.title + " > " + entry.title);
        }
        return items;
    }
};

TEST_F(StatusMenuTest, ListsWindowsByApplicationAndThoseInFront) {
    EXPECT_THAT(Items(),
                ElementsAre("vn_menu_show_glasspane", "-", "Editor", "Editor > Letter", "Editor > Notes",
                            "Browser", "Browser > News", "-", "(vn_menu_present_window)", "Letter", "Notes",
                            "-", "vn_menu_quit_glasspane"));
    machine.frontPid = 0;
    machine.applications.push_back({13, "Late", {{131, "Comer", {0, 0, 30, 30}}}});
    interface.OpenStatusMenu();
    EXPECT_THAT(Items(),
                ElementsAre("vn_menu_show_glasspane", "-", "Editor", "Editor > Letter", "Editor > Notes",
                            "Browser", "Browser > News", "-", "vn_menu_quit_glasspane"))
        << "the panel finds new applications";
}

TEST_F(StatusMenuTest, DoesNothingForWhatIsGoneOrWasNever) {
    machine.applications[0].windows.clear();
    interface.ChooseFromStatusMenu(2, 1);
    EXPECT_FALSE(IsOnWindow());
    for (const auto& [index, subindex] : {std::pair{-1, -1}, {1, -1}, {5, -1}, {2, -1}, {99, 0}, {2, 99}})
        interface.ChooseFromStatusMenu(index, subindex);
    EXPECT_FALSE(IsOnWindow());
    EXPECT_EQ(Picture(), "0,0,64x48");
    interface.ChooseFromStatusMenu(0);
    EXPECT_EQ(interface.panelsShown, 2);
    EXPECT_FALSE(machine.stopped);
    interface.ChooseFromStatusMenu(9);
    EXPECT_TRUE(machine.stopped);
}

} // namespace
