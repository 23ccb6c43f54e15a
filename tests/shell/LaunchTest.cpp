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
    vnMenuItem DriverItem() { return interface.MainMenu()[0].submenu[2]; }
};

/// A controller whose port is a fixed one, which the probe asks for.
TEST_F(LaunchTest, AsksWhetherToEndWhenThePortIsTaken) {
    machine.isListening = true;
    vnController taken(interface, {.port = 1, .bindAddress = "127.0.0.1"});
    interface.answer = true;
    EXPECT_FALSE(taken.applicationDidFinishLaunching());
    EXPECT_THAT(AlertTitles(), ElementsAre("vn_gsp_running_title"));
    EXPECT_EQ(interface.alerts[0].defaultButton, "vn_yes_button");
    EXPECT_EQ(interface.alerts[0].alternateButton, "vn_no_button");
    EXPECT_EQ(taken.Server(), nullptr);
    EXPECT_EQ(interface.panelsShown, 0);
    EXPECT_TRUE(machine.stopped);

    interface.answer = false;
    vnController goesOn(interface, {.port = 1, .bindAddress = "127.0.0.1"});
    EXPECT_TRUE(goesOn.applicationDidFinishLaunching()) << "the user wants it all the same";
    EXPECT_EQ(interface.panelsShown, 1);
    machine.isListening = false;
    interface.alerts.clear();
    vnController alone(interface, {.port = 1, .bindAddress = "127.0.0.1"});
    EXPECT_TRUE(alone.applicationDidFinishLaunching());
    EXPECT_THAT(AlertTitles(), ElementsAre());
}

TEST_F(LaunchTest, WarnsOfAFirewall) {
    machine.isFirewalled = true;
    Launch();
    EXPECT_THAT(AlertTitles(), ElementsAre("vn_firewall_title"));
    EXPECT_EQ(interface.alerts[0].alternateButton, "");
}

TEST_F(LaunchTest, OffersTheDriverThatCameWithTheProgram) {
    machine.hasDriver = false;
    machine.resources["AudioDriverForGlasspane.pkg"] = "/older.pkg";
    interface.answer = true;
    Launch();
    EXPECT_THAT(AlertTitles(), ElementsAre("vn_audio_driver_title"));
    EXPECT_FALSE(State(captureAudio).on);
    EXPECT_THAT(machine.opened, ElementsAre("/older.pkg"));
    machine.resources["MerrowfieldAudio.pkg"] = "/newer.pkg";
    controller.installAudioDriverMessage();
    EXPECT_EQ(machine.opened.back(), "/newer.pkg");
    machine.opens = false;
    EXPECT_FALSE(controller.launchKEXTInstaller());
}

TEST_F(LaunchTest, OffersNoDriverWithoutAnInstallerButAtTheCheckBox) {
    machine.hasDriver = false;
    Launch();
    EXPECT_THAT(AlertTitles(), ElementsAre());
    EXPECT_TRUE(State(captureAudio).on);
    interface.answer = true;
    panel().Switch(captureAudio);
    EXPECT_THAT(AlertTitles(), ElementsAre("vn_audio_driver_title"));
    EXPECT_FALSE(State(captureAudio).on);
    EXPECT_FALSE(controller.Front().AudioIsEnabled());
    EXPECT_THAT(machine.opened, ElementsAre());
}

TEST_F(LaunchTest, LeavesSoundOutWhereThePackagerSaysSo) {
    machine.info["DisableAudioFeatures"] = 1;
    machine.hasDriver = false;
    machine.resources["MerrowfieldAudio.pkg"] = "/driver.pkg";
    Launch();
    EXPECT_TRUE(State(captureAudio).hidden);
    EXPECT_TRUE(State(captureAudioDivider).hidden);
    EXPECT_THAT(AlertTitles(), ElementsAre());
}

TEST_F(LaunchTest, NamesTheDriversStateInTheMainMenu) {
    Launch();
    const struct {
        bool installed, installer;
        const char* title;
        bool enabled;
    } kCases[] = {{true, false, "vn_audio_state_2", false},
                  {true, true, "vn_audio_state_2", false},
                  {false, true, "vn_audio_state_4", true},
                  {false, false, "vn_audio_state_3", false}};
    for (const auto& c : kCases) {
        machine.hasDriver = c.installed;
        machine.resources["MerrowfieldAudio.pkg"] = c.installer ? "/driver.pkg" : "";
        vnMenuItem item = DriverItem();
        interface.ValidateMainMenuItem(item);
        EXPECT_EQ(item.title, c.title);
        EXPECT_EQ(item.enabled, c.enabled) << c.title;
    }
    EXPECT_EQ(DriverItem().tag, vnController::kAudioDriverTag);
    EXPECT_EQ(interface.MainMenu()[0].submenu[10].title, "vn_menu_quit_glasspane");
    EXPECT_EQ(interface.MainMenu()[2].submenu[3].title, "vn_menu_to_front");
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

TEST_F(LaunchTest, EndsOnce) {
    Launch();
    controller.quitMessage();
    EXPECT_TRUE(machine.stopped);
    controller.applicationWillTerminate();
    EXPECT_EQ(controller.Server(), nullptr);
    controller.applicationWillTerminate();
    EXPECT_EQ(machine.openFramebuffers, 0);
    panel().Press(muteButton); // Nobody listens any more.
}

} // namespace
