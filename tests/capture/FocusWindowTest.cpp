#include <algorithm>
#include <map>

#include <gtest/gtest.h>

#include "FakeHost.h"
#include "vnFocusManager.h"
#include "vnFocusWindow.h"
#include "zRect.h"

namespace {

using host::ProcessSerialNumber;
namespace Level = host::WindowLevel;

constexpr uint32_t kWind = 0x77696E64;

/// A window server whose applications and windows a test sets up.
class ScriptedServer : public host::WindowServer {
  public:
    struct Application {
        ProcessSerialNumber process;
        host::ProcessInfo info;
        std::vector<host::WindowId> windows;
    };
    std::vector<Application> applications;
    std::map<host::WindowId, std::string> titles;
    std::map<host::WindowId, host::WindowInfo> infos;
    std::map<host::WindowId, host::Rect> rects;
    bool available = true;
    ProcessSerialNumber front;

    bool IsAvailable() override { return available; }
    int NextProcess(ProcessSerialNumber& process) override {
        auto place = applications.begin();
        if (process != ProcessSerialNumber{})
            place = find(process) + 1;
        if (place == applications.end())
            return -600;
        process = place->process;
        return 0;
    }
    int FrontProcess(ProcessSerialNumber& process) override {
        process = front;
        return front == ProcessSerialNumber{} ? -600 : 0;
    }
    int SetFrontProcess(const ProcessSerialNumber& process) override {
        front = process;
        return 0;
    }
    int ProcessInformation(const ProcessSerialNumber& process, host::ProcessInfo& info) override {
        const auto place = find(process);
        return place == applications.end() ? -1 : (info = place->info, 0);
    }
    int OnScreenWindowList(const ProcessSerialNumber& process, std::vector<host::WindowId>& ids) override {
        const auto place = find(process);
        return place == applications.end() ? -1 : (ids = place->windows, 0);
    }
    int WindowTitle(host::WindowId window, std::string& title) override {
        return take(titles, window, title);
    }
    int CopyWindowInfo(host::WindowId window, host::WindowInfo& info) override {
        return take(infos, window, info);
    }
    int ScreenRectForWindow(host::WindowId window, host::Rect& rect) override {
        return take(rects, window, rect);
    }

  private:
    std::vector<Application>::iterator find(const ProcessSerialNumber& process) {
        return std::find_if(applications.begin(), applications.end(),
                            [&](const Application& one) { return one.process == process; });
    }
    template <class T>
    static int take(const std::map<host::WindowId, T>& from, host::WindowId window, T& out) {
        const auto place = from.find(window);
        return place == from.end() ? -1 : (out = place->second, 0);
    }
};

class WindowedHost : public FakeHost {
  public:
    host::WindowServer& WindowServerPort() override { return server; }
    ScriptedServer server;
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
    std::vector<std::string> WindowsOf(const ProcessSerialNumber& process) {
        zRecord application;
        application.SetInt32("pid_high", process.high);
        application.SetInt32("pid_low", process.low);
        zRecord list;
        list.AddChild(new zRecord);
        EXPECT_EQ(focus->WindowsForApplication(application, list), 0);
        return Titles(list);
    }
    void FocusOn(host::WindowId window) {
        zRecord record;
        record.SetInt32("window_id", static_cast<int>(window));
        focus->FocusOnWindow(zRecord(), record);
    }

    WindowedHost machine;
    host::HostScope scope{machine};
    ScriptedServer& server = machine.server;
    std::unique_ptr<vnFocusWindow> focus{vnFocusWindow::Factory()};
};

using Texts = std::vector<std::string>;

TEST_F(FocusWindow, ListsApplicationsThatHaveWindowsAndNames) {
    server.applications = {{{0, 10}, {"Editor", "org.example.editor"}, {1}},
                           {{0, 11}, {"Windowless", "org.example.daemon"}, {}},
                           {{0, 12}, {"Helpers", "org.example.helpers"}, {2}},
                           {{0, 13}, {"", "org.example.nameless"}, {3}},
                           {{1, 10}, {"Terminal", "xterm"}, {3}},
                           {{0, 14}, {"Unidentified", ""}, {1}}};
    server.titles = {{1, "Letter"}, {3, "sh"}};
    server.infos[2] = {"helper", host::Rect{0, 0, 15, 15}, Level::kNormal};

    zRecord list;
    list.AddChild(new zRecord);
    EXPECT_EQ(focus->Applications(list), -600) << "what ended the walk";
    EXPECT_EQ(Titles(list), (Texts{"Editor/10", "Terminal/10"}));
    EXPECT_STREQ(list.Child(1)->AsCString("id", ""), "xterm");
    EXPECT_EQ(list.Child(1)->AsInt32("pid_high", -1), 1);
}

TEST_F(FocusWindow, ListsWindowsByTheirOwnTitle) {
    server.applications = {{{0, 10}, {"Editor", "editor"}, {5, 1, 2, 3, 4}}};
    server.titles = {{1, "Letter"}, {2, ""}, {3, " "}, {4, "  "}, {5, "last opened"}};
    // A title of its own decides alone.
    server.infos[3] = {"would be shown", host::Rect{0, 0, 100, 100}, Level::kNormal};
    EXPECT_EQ(WindowsOf({0, 10}), (Texts{"last opened/5", "Letter/1", "  /4"}));
    EXPECT_EQ(WindowsOf({1, 10}), Texts{}) << "another application";
}

TEST_F(FocusWindow, JudgesWindowsWithoutATitleByWhatIsKnownOfThem) {
    const host::Rect big{0, 0, 100, 100};
    struct {
        host::WindowInfo info;
        bool isListed;
    } const cases[] = {
        {{"", big, Level::kNormal}, true},
        {{"named", big, Level::kNormal}, true},
        {{" ", big, Level::kNormal}, false},
        {{std::nullopt, big, Level::kNormal}, false},
        {{"no bounds", std::nullopt, Level::kNormal}, false},
        {{"helper", host::Rect{7, 7, 15, 15}, Level::kNormal}, false},
        {{"narrow", host::Rect{0, 0, 15, 16}, Level::kNormal}, true},
        {{"", big, Level::kDock}, false},
        {{"bar", big, Level::kDock}, true},
        {{"", big, Level::kStatus}, false},
        {{"", big, Level::kDragging}, false},
        {{"", big, Level::kCursor}, false},
        {{"", big, Level::kOverlay}, true},
        {{"", big, Level::kOverlay + 1}, false},
        {{"", big, Level::kDesktopIcon}, false},
        {{"icons", big, Level::kDesktopIcon}, true},
        {{"", big, Level::kUnknown}, false},
    };
    server.applications = {{{0, 10}, {"Editor", "editor"}, {1}}};
    for (const auto& one : cases) {
        server.infos[1] = one.info;
        EXPECT_EQ(WindowsOf({0, 10}).size(), one.isListed ? 1U : 0U)
            << one.info.name.value_or("(none)") << " at " << one.info.level;
    }
}

TEST_F(FocusWindow, FollowsTheWindowUntilItGoes) {
    zRect rect(1, 2, 3, 4);
    EXPECT_EQ(focus->Rect(rect), -1) << "no window yet";
    FocusOn(7);
    server.rects[7] = {100.9, -20.9, 300.9, 200.9};
    EXPECT_EQ(focus->Rect(rect), 0);
    EXPECT_EQ(rect, zRect(100, -20, 399, 179));
    server.rects[7] = {0, 0, 1, 1};
    EXPECT_EQ(focus->Rect(rect), 0);
    EXPECT_EQ(rect, zRect(0, 0, 0, 0));
    server.rects.clear();
    EXPECT_EQ(focus->Rect(rect), -1);
    zRecord application;
    zRecord window;
    focus->GetFocus(application, window);
    EXPECT_EQ(window.AsInt32("window_id", 0), 7) << "a copy: its original has gone";
}

TEST_F(FocusWindow, FindsAndMovesTheFront) {
    server.applications = {{{0, 10}, {"Editor", "editor"}, {1}}, {{0, 11}, {"", ""}, {1}}};
    zRecord application;
    EXPECT_FALSE(focus->FrontmostApplication(nullptr));
    server.front = {0, 11};
    EXPECT_TRUE(focus->FrontmostApplication(nullptr));
    EXPECT_FALSE(focus->FrontmostApplication(&application)) << "it has no name";
    application.SetInt32("pid_low", 10);
    EXPECT_EQ(focus->MakeFrontmost(application, zRecord()), 0);
    EXPECT_EQ(server.front, (ProcessSerialNumber{0, 10}));
    EXPECT_TRUE(focus->FrontmostApplication(&application));
    EXPECT_STREQ(application.AsCString("title", ""), "Editor");
}

TEST_F(FocusWindow, IsNotOfferedWithoutAWindowServer) {
    server.applications = {{{0, 10}, {"Editor", "editor"}, {1}}};
    server.titles = {{1, "Letter"}};
    vnFocusManager manager;
    EXPECT_TRUE(manager.CanFocusOn(kWind));
    server.available = false;
    EXPECT_FALSE(manager.CanFocusOn(kWind));
    zRecord list;
    list.AddChild(new zRecord);
    EXPECT_EQ(focus->Applications(list), 0);
    EXPECT_FALSE(list.HasChildren());
    EXPECT_EQ(WindowsOf({0, 10}), Texts{});

    FakeHost windowless;
    const host::HostScope inner(windowless);
    EXPECT_FALSE(focus->FrontmostApplication(nullptr));
    EXPECT_EQ(focus->MakeFrontmost(list, list), host::WindowServer::kMissing);
}

TEST_F(FocusWindow, OfTheManagerIsCutAtItsFarEdges) {
    vnFocusManager manager;
    zRecord window;
    window.SetInt32("window_id", 7);
    manager.FocusWindow()->FocusOnWindow(zRecord(), window);
    manager.SetFocus(kWind);
    server.rects[7] = {50, 60, 3000, 500};
    zRect rect;
    EXPECT_EQ(manager.Rect(rect), 0);
    EXPECT_EQ(rect, zRect(50, 60, 50 + 2047, 60 + 499));
    server.rects.clear();
    EXPECT_EQ(manager.Rect(rect), -1);
}

} // namespace
