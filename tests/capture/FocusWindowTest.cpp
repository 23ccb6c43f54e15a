#include <gtest/gtest.h>

#include "FakeHost.h"
#include "FakeWindows.h"
#include "vnFocusManager.h"
#include "vnFocusWindow.h"
#include "zRect.h"

namespace {

namespace Level = host::WindowLevel;

constexpr uint32_t kWind = 0x77696E64;

class WindowedHost : public FakeHost, public FakeWindows {
  public:
    host::WindowServer& WindowServerPort() override { return *this; }
};

class FocusWindow : public testing::Test {
  protected:
    /// The titles of a list's children, each with its id.
    static std::vector<std::string> Titles(const zRecord& list) {
        std::vector<std::string> titles;
        for (const zRecord* child : list.Children())
            titles.push_back(std::string(child->AsCString("title", "none")) + "/" +
                             std::to_string(child->AsInt32("window_id", child->AsInt32("pid_low", 0))));
        return titles;
    }
    std::vector<std::string> WindowsOf(int high, int low) {
        zRecord application;
        application.SetInt32("pid_high", high);
        application.SetInt32("pid_low", low);
        zRecord list;
        list.AddChild(new zRecord);
        EXPECT_EQ(focus->WindowsForApplication(application, list), 0);
        return Titles(list);
    }

    WindowedHost machine;
    host::HostScope scope{machine};
    std::unique_ptr<vnFocusWindow> focus{vnFocusWindow::Factory()};
};

using Texts = std::vector<std::string>;

TEST_F(FocusWindow, ListsApplicationsThatHaveWindowsAndNames) {
    const FakeWindows::Window letter{1, "Letter", {}};
    const FakeWindows::Window shell{3, "sh", {}};
    const host::WindowInfo small{"helper", host::Rect{0, 0, 15, 15}, Level::kNormal};
    machine.applications = {{10, "Editor", {letter}},
                            {11, "Windowless", {}},
                            {12, "Helpers", {{2, std::nullopt, {}, small}}},
                            {13, "", {shell}},
                            {10, "Terminal", {shell}, "xterm", 1},
                            {14, "Unidentified", {letter}, ""}};
    zRecord list;
    list.AddChild(new zRecord);
    EXPECT_EQ(focus->Applications(list), -600) << "what ended the walk";
    EXPECT_EQ(Titles(list), (Texts{"Editor/10", "Terminal/10"}));
    EXPECT_STREQ(list.Child(1)->AsCString("id", ""), "xterm");
    EXPECT_EQ(list.Child(1)->AsInt32("pid_high", -1), 1);
    EXPECT_EQ(WindowsOf(1, 10), Texts{"sh/3"});

    machine.hasWindows = false;
    EXPECT_EQ(focus->Applications(list), 0);
    EXPECT_FALSE(list.HasChildren());
    EXPECT_EQ(WindowsOf(1, 10), Texts{});
}

TEST_F(FocusWindow, JudgesWindowsByTheirTitleOrElseByWhatIsKnownOfThem) {
    using Info = host::WindowInfo;
    const host::Rect big{0, 0, 100, 100};
    struct {
        std::optional<std::string> title;
        Info info;
        bool isListed;
    } const cases[] = {
        {"Letter", {}, true},
        {"", {}, false},
        {"  ", {}, true},
        {" ", {"a title of its own decides alone", big, Level::kNormal}, false},
        {{}, Info{"", big, Level::kNormal}, true},
        {{}, Info{"named", big, Level::kNormal}, true},
        {{}, Info{" ", big, Level::kNormal}, false},
        {{}, Info{std::nullopt, big, Level::kNormal}, false},
        {{}, Info{"no bounds", std::nullopt, Level::kNormal}, false},
        {{}, Info{"helper", host::Rect{7, 7, 15, 15}, Level::kNormal}, false},
        {{}, Info{"narrow", host::Rect{0, 0, 15, 16}, Level::kNormal}, true},
        {{}, Info{"", big, Level::kDock}, false},
        {{}, Info{"bar", big, Level::kDock}, true},
        {{}, Info{"", big, Level::kStatus}, false},
        {{}, Info{"", big, Level::kDragging}, false},
        {{}, Info{"", big, Level::kCursor}, false},
        {{}, Info{"", big, Level::kOverlay}, true},
        {{}, Info{"", big, Level::kOverlay + 1}, false},
        {{}, Info{"", big, Level::kDesktopIcon}, false},
        {{}, Info{"icons", big, Level::kDesktopIcon}, true},
        {{}, Info{"", big, Level::kUnknown}, false},
    };
    for (const auto& one : cases) {
        machine.applications = {{10, "Editor", {{1, one.title, {}, one.info}}}};
        EXPECT_EQ(WindowsOf(0, 10).size(), one.isListed ? 1U : 0U)
            << one.title.value_or(one.info.name.value_or("(none)")) << " at " << one.info.level;
    }
}

TEST_F(FocusWindow, FollowsTheWindowUntilItGoesAndIsCutAtItsFarEdges) {
    vnFocusManager manager;
    EXPECT_TRUE(manager.CanFocusOn(kWind));
    manager.SetFocus(kWind);
    zRect rect(1, 2, 3, 4);
    EXPECT_EQ(manager.Rect(rect), -1) << "no window yet";
    zRecord window;
    window.SetInt32("window_id", 7);
    manager.FocusWindow()->FocusOnWindow(zRecord(), window);
    struct {
        host::Rect place;
        zRect rect;
    } const cases[] = {
        {{100.9, -20.9, 300.9, 200.9}, {100, -20, 399, 179}},
        {{0, 0, 1, 1}, {0, 0, 0, 0}},
        {{50, 60, 3000, 500}, {50, 60, 50 + 2047, 60 + 499}},
    };
    for (const auto& one : cases) {
        machine.applications = {{10, "Editor", {{7, "Letter", one.place}}}};
        EXPECT_EQ(manager.Rect(rect), 0);
        EXPECT_EQ(rect, one.rect) << one.place.x;
    }
    machine.applications.clear();
    EXPECT_EQ(manager.Rect(rect), -1);
    zRecord application;
    manager.FocusWindow()->GetFocus(application, window);
    EXPECT_EQ(window.AsInt32("window_id", 0), 7) << "a copy: its original has gone";
    machine.hasWindows = false;
    EXPECT_FALSE(manager.CanFocusOn(kWind));
}

} // namespace
