#include <atomic>
#include <chrono>
#include <fstream>
#include <functional>
#include <thread>
#include <unistd.h>

#include <gtest/gtest.h>

#include "Program.h"
#include "X11Connection.h"
#include "X11Reply.h"
#include "X11WindowServer.h"
#include "XServer.h"
#include "XWindows.h"

namespace host {
void PrintTo(const ProcessSerialNumber& process, std::ostream* out) {
    *out << process.high << "/" << process.low;
}
} // namespace host

namespace {

using Psn = host::ProcessSerialNumber;
using Windows = std::vector<host::WindowId>;

class X11WindowServer : public testing::Test {
  protected:
    void Start() {
        server = std::make_unique<XServer>("800x600x24");
        if (!server->Running())
            return;
        windows = std::make_unique<XWindows>(server->Display());
        std::string whyNot;
        connection = host::X11Connection::Open(server->Display().c_str(), whyNot);
        ASSERT_NE(connection, nullptr) << whyNot;
        port = std::make_unique<host::X11WindowServer>(*connection);
    }

    /// False when there is no window manager to be had. One that isn't done with starting loses windows.
    bool StartManager() {
        manager = std::make_unique<Program>(
            std::vector<std::string>{"openbox", "--sm-disable", "--startup", "echo ready"},
            std::vector<std::string>{"DISPLAY=" + server->Display()});
        std::string line;
        do
            line = manager->ReadLine();
        while (!line.empty() && line != "ready");
        return !line.empty();
    }

    static bool Await(const std::function<bool()>& condition) {
        const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (!condition()) {
            if (std::chrono::steady_clock::now() > limit)
                return false;
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        return true;
    }

    xcb_window_t OpenTitled(const std::string& title, int x = 50, int y = 60, int width = 200,
                            int height = 100) {
        const xcb_window_t window = windows->Open(x, y, width, height);
        windows->SetText(window, "_NET_WM_NAME", "UTF8_STRING", title);
        return window;
    }
    /// A shown window of an application that tells its process id.
    xcb_window_t ShowOf(int pid, const std::string& title) {
        const xcb_window_t window = OpenTitled(title);
        windows->SetNumbers(window, "_NET_WM_PID", "CARDINAL", {static_cast<uint32_t>(pid)});
        windows->Show(window);
        return window;
    }

    Windows Listed(const Psn& process) {
        Windows ids;
        EXPECT_EQ(port->OnScreenWindowList(process, ids), 0);
        return ids;
    }
    std::vector<Psn> Walk() {
        std::vector<Psn> all;
        for (Psn one; port->NextProcess(one) == 0;)
            all.push_back(one);
        return all;
    }
    /// The rectangle as whole pixels, or one of size 0.
    std::vector<int> RectOf(host::WindowId window) {
        host::Rect rect;
        port->ScreenRectForWindow(window, rect);
        return {static_cast<int>(rect.x), static_cast<int>(rect.y), static_cast<int>(rect.width),
                static_cast<int>(rect.height)};
    }
    std::vector<int> OutlineOf(xcb_window_t window) {
        const xcb_rectangle_t outline = windows->Outline(windows->TopLevel(window));
        return {outline.x, outline.y, outline.width, outline.height};
    }

    std::unique_ptr<XServer> server;
    std::unique_ptr<Program> manager;
    std::unique_ptr<XWindows> windows;
    std::unique_ptr<host::X11Connection> connection;
    std::unique_ptr<host::X11WindowServer> port;
};

const std::vector<int> kNowhere{0, 0, 0, 0};

#define NEED_SERVER()                                                                                        \
    do {                                                                                                     \
        ASSERT_NO_FATAL_FAILURE(Start());                                                                    \
        if (!server->Running())                                                                              \
            SKIP_OR_FAIL(server->WhyNot());                                                                  \
    } while (false)

#define NEED_MANAGER()                                                                                       \
    do {                                                                                                     \
        NEED_SERVER();                                                                                       \
        if (!StartManager())                                                                                 \
            SKIP_OR_FAIL("openbox does not start: is it installed?");                                        \
    } while (false)

TEST_F(X11WindowServer, WithoutAManagerListsTheTopLevelWindowsThatAreShown) {
    NEED_SERVER();
    EXPECT_TRUE(port->IsAvailable());
    EXPECT_TRUE(Walk().empty());
    const xcb_window_t shown = OpenTitled("shown");
    windows->Show(shown);
    OpenTitled("not shown");
    const Psn self{0, getpid()};
    EXPECT_EQ(Walk(), std::vector<Psn>{self}) << "the server knows whose the windows are";
    EXPECT_EQ(Listed(self), Windows{shown});

    std::string own;
    std::getline(std::ifstream("/proc/self/comm"), own);
    host::ProcessInfo info;
    ASSERT_EQ(port->ProcessInformation(self, info), 0);
    EXPECT_EQ(info.name, own);
    EXPECT_EQ(info.identifier, own);
    EXPECT_EQ(port->ProcessInformation({0, 1}, info), -1);
}

TEST_F(X11WindowServer, ReadsTitlesOfEveryKind) {
    NEED_SERVER();
    const std::string euros = "\xE2\x82\xAC";
    std::string many;
    for (int i = 0; i < 1000; ++i)
        many += euros;
    struct {
        const char* property;
        const char* type;
        std::string text;
        std::string expected;
    } const cases[] = {
        {"_NET_WM_NAME", "UTF8_STRING", "Budget " + euros, "Budget " + euros},
        {"_NET_WM_NAME", "UTF8_STRING", "", ""},
        {"_NET_WM_NAME", "UTF8_STRING", "one\ntwo\x1B[3", "one two [3"},
        {"_NET_WM_NAME", "UTF8_STRING", many, many.substr(0, 1023)},
        {"WM_NAME", "STRING", "Caf\xE9", "Caf\xC3\xA9"},
        {"WM_NAME", "STRING", std::string("Cut\0off", 7), "Cut"},
        {"WM_NAME", "UTF8_STRING", "Caf\xC3\xA9", "Caf\xC3\xA9"},
        {"WM_NAME", "STRING", "\xE0\x80\x80", "\xC3\xA0\xC2\x80\xC2\x80"}, // no character of UTF-8
    };
    for (const auto& one : cases) {
        const xcb_window_t window = windows->Open(0, 0, 10, 10);
        windows->SetText(window, one.property, one.type, one.text);
        const bool isLegacy = one.property == std::string("WM_NAME");
        std::string title = "untouched";
        EXPECT_EQ(port->WindowTitle(window, title), isLegacy ? -1 : 0);
        EXPECT_EQ(title, isLegacy ? "untouched" : one.expected);
        host::WindowInfo info;
        ASSERT_EQ(port->CopyWindowInfo(window, info), 0);
        EXPECT_EQ(info.name, isLegacy ? std::optional(one.expected) : std::nullopt);
    }
}

TEST_F(X11WindowServer, TellsTheLevelOfSpecialWindows) {
    NEED_SERVER();
    const xcb_window_t window = OpenTitled("panel");
    host::WindowInfo info;
    port->CopyWindowInfo(window, info);
    EXPECT_EQ(info.level, host::WindowLevel::kNormal);
    EXPECT_FALSE(info.bounds) << "not on the screen";
    windows->Show(window);
    const uint32_t dock = windows->Atom("_NET_WM_WINDOW_TYPE_DOCK");
    windows->SetNumbers(window, "_NET_WM_WINDOW_TYPE", "ATOM", {dock});
    port->CopyWindowInfo(window, info);
    EXPECT_EQ(info.level, host::WindowLevel::kDock);
    EXPECT_TRUE(info.bounds);
}

TEST_F(X11WindowServer, AssignsWindowsToApplications) {
    NEED_SERVER();
    const auto foreign = [&](const std::string& title) {
        const xcb_window_t window = OpenTitled(title);
        windows->SetText(window, "WM_CLIENT_MACHINE", "STRING", "no.such.machine");
        windows->SetNumbers(window, "_NET_WM_PID", "CARDINAL", {4711});
        windows->Show(window);
        return window;
    };
    const auto id = [](xcb_window_t window) { return static_cast<int32_t>(window); };
    const xcb_window_t byPid = ShowOf(4711, "tells its process");
    const xcb_window_t alone = foreign("alone");
    const xcb_window_t byLeader = foreign("led");
    windows->SetNumbers(byLeader, "WM_CLIENT_LEADER", "WINDOW", {alone});
    const xcb_window_t byHints = foreign("hinted");
    windows->SetNumbers(byHints, "WM_HINTS", "WM_HINTS", {1U << 6, 0, 0, 0, 0, 0, 0, 0, alone});
    const xcb_window_t first = foreign("first of a class");
    const xcb_window_t second = foreign("second of a class");
    for (const xcb_window_t window : {first, second})
        windows->SetText(window, "WM_CLASS", "STRING", std::string("xterm\0XTerm\0", 12));

    EXPECT_EQ(Walk(), (std::vector<Psn>{{0, 4711}, {1, id(alone)}, {1, id(first)}}));
    EXPECT_EQ(Listed({0, 4711}), Windows{byPid});
    EXPECT_EQ(Listed({1, id(alone)}), (Windows{alone, byLeader, byHints}));
    EXPECT_EQ(Listed({1, id(first)}), (Windows{first, second}));

    host::ProcessInfo info;
    ASSERT_EQ(port->ProcessInformation({1, id(first)}, info), 0);
    EXPECT_EQ(info.name, "XTerm");
    EXPECT_EQ(info.identifier, "XTerm");
    windows->SetText(second, "_GTK_APPLICATION_ID", "UTF8_STRING", "org.example.Terminal");
    ASSERT_EQ(port->ProcessInformation({1, id(first)}, info), 0);
    EXPECT_EQ(info.identifier, "org.example.Terminal");
    ASSERT_EQ(port->ProcessInformation({1, id(alone)}, info), 0);
    EXPECT_EQ(info.name, "alone") << "for want of anything better";
}

TEST_F(X11WindowServer, FollowsAPlainWindowWithItsBorderAndWithoutItsShadow) {
    NEED_SERVER();
    const xcb_window_t window = windows->Open(10, 20, 300, 200, 3);
    EXPECT_EQ(RectOf(window), kNowhere);
    windows->Show(window);
    EXPECT_EQ(RectOf(window), (std::vector<int>{10, 20, 306, 206}));
    windows->Place(window, -40, 500, 100, 150);
    EXPECT_EQ(RectOf(window), (std::vector<int>{-40, 500, 106, 156}));
    windows->SetNumbers(window, "_GTK_FRAME_EXTENTS", "CARDINAL", {5, 6, 7, 8});
    EXPECT_EQ(RectOf(window), (std::vector<int>{-35, 507, 95, 141}));
    windows->SetNumbers(window, "_GTK_FRAME_EXTENTS", "CARDINAL", {0xFFFFFFFF, 0, 0, 0});
    EXPECT_EQ(RectOf(window), (std::vector<int>{-40, 500, 106, 156})) << "no one has such a shadow";
    windows->Close(window);
    EXPECT_EQ(RectOf(window), kNowhere);
    EXPECT_EQ(RectOf(0), kNowhere);
}

TEST_F(X11WindowServer, WithoutAManagerFindsAndMovesTheFront) {
    NEED_SERVER();
    Psn front;
    EXPECT_EQ(port->FrontProcess(front), -1);
    const xcb_window_t one = ShowOf(11, "one");
    const xcb_window_t two = ShowOf(22, "two");
    windows->FocusKeyboard(two);
    ASSERT_EQ(port->FrontProcess(front), 0);
    EXPECT_EQ(front, (Psn{0, 22}));
    EXPECT_TRUE(windows->IsAbove(two, one));
    EXPECT_EQ(port->SetFrontProcess({0, 11}), 0);
    EXPECT_TRUE(windows->IsAbove(one, two));
    ASSERT_EQ(port->FrontProcess(front), 0);
    EXPECT_EQ(front, (Psn{0, 11}));
    EXPECT_EQ(port->SetFrontProcess({0, 33}), -1);
}

TEST_F(X11WindowServer, SeesAWindowWithItsFrameUntilItIsMinimised) {
    NEED_MANAGER();
    const xcb_window_t window = ShowOf(11, "framed");
    ASSERT_TRUE(Await([&] { return Listed({0, 11}) == Windows{window}; }));
    EXPECT_NE(windows->TopLevel(window), window) << "the manager gave it a frame";
    EXPECT_TRUE(Await([&] { return RectOf(window) == OutlineOf(window); }));
    EXPECT_GT(RectOf(window)[3], 100) << "with a title bar";

    const std::vector<int> before = RectOf(window);
    windows->Place(window, 321, 234, 150, 80);
    EXPECT_TRUE(Await([&] { return RectOf(window) != before && RectOf(window) == OutlineOf(window); }));

    windows->Minimise(window);
    EXPECT_TRUE(Await([&] { return Listed({0, 11}).empty(); }));
    EXPECT_EQ(RectOf(window), kNowhere);
    EXPECT_TRUE(Walk().empty());
}

TEST_F(X11WindowServer, AsksTheManagerForTheFront) {
    NEED_MANAGER();
    const xcb_window_t one = ShowOf(11, "one");
    const xcb_window_t three = ShowOf(11, "three");
    ASSERT_TRUE(Await([&] { return Listed({0, 11}).size() == 2; }));
    const xcb_window_t two = ShowOf(22, "two");
    ASSERT_TRUE(Await([&] { return Listed({0, 22}).size() == 1; }));
    const auto frontIs = [&](const Psn& expected) {
        Psn front;
        return port->FrontProcess(front) == 0 && front == expected;
    };
    ASSERT_EQ(port->SetFrontProcess({0, 22}), 0);
    EXPECT_TRUE(Await([&] { return frontIs({0, 22}); }));
    ASSERT_EQ(port->SetFrontProcess({0, 11}), 0);
    EXPECT_TRUE(Await([&] { return frontIs({0, 11}); }));
    const auto isAbove = [&](xcb_window_t upper, xcb_window_t lower) {
        return windows->IsAbove(windows->TopLevel(upper), windows->TopLevel(lower));
    };
    EXPECT_TRUE(Await([&] { return isAbove(one, two) && isAbove(three, two); })) << "all of its windows";
}

TEST_F(X11WindowServer, TrustsNoListThatAKilledManagerLeft) {
    NEED_MANAGER();
    const xcb_window_t window = ShowOf(11, "survivor");
    ASSERT_TRUE(Await([&] { return Listed({0, 11}) == Windows{window}; }));
    ASSERT_TRUE(Await([&] { return RectOf(window) == OutlineOf(window); }));
    manager->Signal(SIGKILL);
    ASSERT_TRUE(manager->WaitForExit());
    ASSERT_TRUE(Await([&] { return windows->TopLevel(window) == window; })) << "it loses its frame";
    windows->SetNumbers(windows->Root(), "_NET_CLIENT_LIST", "WINDOW", {window, 0x12345});
    const xcb_window_t later = ShowOf(11, "later");
    EXPECT_TRUE(Await([&] { return Listed({0, 11}) == (Windows{window, later}); }));
    EXPECT_EQ(RectOf(window), OutlineOf(window));
}

TEST_F(X11WindowServer, LetsNoErrorEscapeWhileWindowsVanish) {
    NEED_SERVER();
    std::atomic<bool> done{false};
    std::atomic<int> rounds{0};
    std::thread storm([&] {
        XWindows others(server->Display());
        while (!done) {
            std::vector<xcb_window_t> ids;
            for (int i = 0; i < 10; ++i) {
                ids.push_back(others.Open(i, i, 20, 20));
                others.SetText(ids.back(), "WM_NAME", "STRING", "storm");
                others.Show(ids.back());
            }
            for (const xcb_window_t id : ids)
                others.Close(id);
            ++rounds;
        }
    });
    size_t seen = 0;
    while (rounds < 40) {
        for (const Psn& process : Walk()) {
            for (const host::WindowId id : Listed(process)) {
                ++seen;
                host::WindowInfo info;
                std::string title;
                host::Rect rect;
                port->WindowTitle(id, title);
                port->CopyWindowInfo(id, info);
                port->ScreenRectForWindow(id, rect);
            }
            host::ProcessInfo info;
            port->ProcessInformation(process, info);
            port->SetFrontProcess(process);
            Psn front;
            port->FrontProcess(front);
        }
    }
    done = true;
    storm.join();
    EXPECT_GT(seen, 0U);
    EXPECT_TRUE(port->IsAvailable());
    EXPECT_TRUE(Walk().empty());
    while (const host::X11Reply<xcb_generic_event_t> event{xcb_poll_for_event(connection->Xcb())})
        EXPECT_NE(event->response_type, 0) << "an error that nobody took";
}

TEST_F(X11WindowServer, FailsForGoodWhenTheServerDies) {
    NEED_SERVER();
    const xcb_window_t window = ShowOf(11, "doomed");
    ASSERT_EQ(Walk().size(), 1U);
    server->Kill();
    EXPECT_TRUE(Walk().empty());
    EXPECT_TRUE(Listed({0, 11}).empty());
    EXPECT_EQ(RectOf(window), kNowhere);
    EXPECT_EQ(port->SetFrontProcess({0, 11}), -1);
    EXPECT_FALSE(port->IsAvailable());
}

} // namespace
