#include "ShellFixture.h"

namespace {

using testing::ElementsAre;
using enum vnControl;

class LaunchTest : public ShellTest {
  protected:
    std::vector<std::string> AlertTitles() const {
        std::vector<std::string> titles;
        for (const vnAlert& alert : interface.alerts)
            titles.push_back(alert.title);
        return titles;
    }
};

/// A controller whose port is a fixed one, which the probe asks for.
TEST_F(LaunchTest, AsksWhetherToEndWhenThePortIsTaken) {
    machine.isListening = true;
    vnController taken(interface, {.port = 1, .bindAddress = "127.0.0.1"});
    interface.answer = true;
    EXPECT_FALSE(taken.applicationDidFinishLaunching());
    EXPECT_THAT(AlertTitles(), ElementsAre("vn_gsp_running_title"));
    EXPECT_EQ(taken.Server(), nullptr);
    EXPECT_EQ(interface.panelsShown, 0);
    EXPECT_TRUE(machine.stopped);

    interface.answer = false;
    vnController goesOn(interface, {.port = 1, .bindAddress = "127.0.0.1"});
    EXPECT_TRUE(goesOn.applicationDidFinishLaunching()) << "the user wants it all the same";
    EXPECT_EQ(interface.panelsShown, 1);
}

TEST_F(LaunchTest, OffersTheDriverWhereItIsMissingAndCameWithTheProgram) {
    const struct {
        bool installed, leftOut, installer;
        bool isOffered;
        const char* menuTitle;
    } cases[] = {{true, false, true, false, "vn_audio_state_2"},
                 {false, false, true, true, "vn_audio_state_4"},
                 {false, false, false, false, "vn_audio_state_3"},
                 {false, true, true, false, "vn_audio_state_4"}};
    interface.answer = true;
    for (const auto& one : cases) {
        SCOPED_TRACE(one.menuTitle);
        machine.hasDriver = one.installed;
        machine.info["DisableAudioFeatures"] = one.leftOut;
        machine.resources["MerrowfieldAudio.pkg"] = one.installer ? "/driver.pkg" : "";
        machine.opened.clear();
        interface.alerts.clear();
        vnController launched(interface, {.port = 0, .bindAddress = "127.0.0.1"});
        ASSERT_TRUE(launched.applicationDidFinishLaunching());
        using Texts = std::vector<std::string>;
        EXPECT_EQ(AlertTitles(), one.isOffered ? Texts{"vn_audio_driver_title"} : Texts{});
        EXPECT_EQ(machine.opened, one.isOffered ? Texts{"/driver.pkg"} : Texts{});
        EXPECT_EQ(State(captureAudio).hidden, one.leftOut);
        vnMenuItem item = interface.MainMenu()[0].submenu[2];
        interface.ValidateMainMenuItem(item);
        EXPECT_EQ(item.title, one.menuTitle);
        EXPECT_EQ(item.enabled, !one.installed && one.installer);
    }
}

TEST_F(LaunchTest, ServesWithoutDisplaysAndWindows) {
    machine.displays.clear();
    machine.hasWindows = false;
    Launch();
    EXPECT_THAT(Titles(fDevicePopup), ElementsAre());
    for (int item = 0; item < 5; ++item)
        panel().Choose(fSelectPopup, item);
    panel().Press(muteButton);
    ASSERT_EQ(controller.Server()->WaitUntilListening(), 0);
    EXPECT_TRUE(TestClient(controller.Server()->Port()).Call("CheckConnection"));
}

} // namespace
