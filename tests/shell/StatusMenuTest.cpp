#include "ShellFixture.h"

namespace {

using testing::ElementsAre;

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

TEST_F(StatusMenuTest, BringsAWindowOfAnApplicationToTheFrontAndServesIt) {
    interface.ChooseFromStatusMenu(3, 0);
    EXPECT_EQ(Picture(), "70,10,24x16");
    EXPECT_THAT(machine.broughtToFront, ElementsAre(11));
    EXPECT_EQ(controller.Front().CurrentDeviceIndex(), -1);
    EXPECT_EQ(SelectedTitle(vnControl::fDevicePopup), "vn_window");
    EXPECT_EQ(SelectedTitle(vnControl::fSelectPopup), "Browser");
    EXPECT_EQ(SelectedTitle(vnControl::fWindowPopup), "News");
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
