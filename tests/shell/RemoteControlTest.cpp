#include "ShellFixture.h"

#include "vnRemoteControl_mac.h"

namespace {

using testing::ElementsAre;

class RemoteControlTest : public ShellTest {
  protected:
    RemoteControlTest() { Launch(); }
    ~RemoteControlTest() override { remote->Release(); }

    /// A line for each record, items indented; "*" marks what is checked.
    std::vector<std::string> Menus() {
        fMenus.MakeEmpty();
        remote->GetMenus(fMenus);
        std::vector<std::string> lines;
        const auto add = [&lines](const std::string& indent, const zRecord& record) {
            lines.push_back(indent + (record.AsBool("checked", false) ? "*" : "") +
                            record.AsCString("title", "?"));
        };
        for (const zRecord* entry : fMenus.Children()) {
            add("", *entry);
            for (const zRecord* item : entry->Children())
                add(" ", *item);
        }
        return lines;
    }

    /// Sends an entry back with one of its items.
    void Choose(unsigned entry, unsigned item) {
        zRecord chosen;
        chosen.Copy(*fMenus.Child(entry), false, true);
        chosen.AddChild(new zRecord(*fMenus.Child(entry)->Child(item)));
        EXPECT_EQ(remote->SetSourceFromMenuItem(chosen), 1);
    }

    vnRemoteControl_mac* remote = new vnRemoteControl_mac(controller);
    zRecord fMenus;
};

TEST_F(RemoteControlTest, ChoosesAScreenThenAWindowThenAScreen) {
    Menus();
    Choose(0, 0);
    EXPECT_EQ(Picture(), "64,10,100x80");
    EXPECT_EQ(State(vnControl::fDevicePopup).selected, 1);
    EXPECT_THAT(Menus()[0], "*Screen 'vn_display_number'");

    Choose(2, 1);
    EXPECT_EQ(Picture(), "50,8,40x30");
    EXPECT_EQ(SelectedTitle(vnControl::fWindowPopup), "Notes");
    EXPECT_THAT(Menus(), ElementsAre("Screen 'vn_display_number'", " Full Screen", " Select Screen Region",
                                     "Screen 'vn_display_number'", " Full Screen", " Select Screen Region",
                                     "*Editor", " Letter", " *Notes", "Browser", " News"));
    Choose(1, 0);
    EXPECT_EQ(Picture(), "0,0,64x48");
}

TEST_F(RemoteControlTest, ARegionBringsTheOverlayUp) {
    Menus();
    Choose(1, 1);
    ASSERT_TRUE(controller.RegionSelector());
    EXPECT_TRUE(controller.RegionSelector()->IsShown());
    EXPECT_EQ(interface.panelsShown, 1) << "a panel that was put away stays away";
    EXPECT_EQ(Picture(), "0,0,64x48") << "until the user has drawn one";
    controller.RegionSelector()->View().SetSelection({2, 4, 30, 24});
    controller.RegionSelector()->View().KeyDown(13);
    EXPECT_EQ(Picture(), "2,20,30x24");
    EXPECT_THAT(Menus()[5], " *Select Screen Region");
}

TEST_F(RemoteControlTest, SurvivesWhatNoMenuHolds) {
    Menus();
    zRecord record;
    EXPECT_EQ(remote->SetSourceFromMenuItem(record), 1);
    record.SetCString("id", vnRemoteControl_mac::kScreenDevice);
    EXPECT_EQ(remote->SetSourceFromMenuItem(record), 1);
    EXPECT_EQ(Picture(), "0,0,64x48") << "without a child nothing changes";

    auto* item = new zRecord;
    item->SetCString("options", "rubbish");
    record.AddChild(item);
    for (const char* index : {"99", "-1", "2147483648", "rubbish", "1,2,3,4"}) {
        record.SetAuto("device_index", index);
        EXPECT_EQ(remote->SetSourceFromMenuItem(record), 1) << index;
    }
    record.SetCString("id", "unknown");
    EXPECT_EQ(remote->SetSourceFromMenuItem(record), 1);
    EXPECT_TRUE(IsOnWindow()) << "whatever isn't a screen is a window, even one that isn't there";
    Menus();
    panel().Choose(vnControl::fDevicePopup, 0);
    EXPECT_EQ(Picture(), "0,0,64x48");
}

TEST_F(RemoteControlTest, AnswersOverTheWire) {
    ASSERT_EQ(controller.Server()->WaitUntilListening(), 0);
    TestClient client(controller.Server()->Port());
    const auto menus = client.Call("GetMenus");
    ASSERT_TRUE(menus);
    EXPECT_THAT(menus->body, testing::HasSubstr("title=\"Notes\""));
    const auto nothing = client.Call("EnableOrDisableAudioOrVideo");
    ASSERT_TRUE(nothing);
    EXPECT_EQ(nothing->body, "<methodResponse />\n");
}

} // namespace
