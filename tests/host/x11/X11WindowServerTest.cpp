#include <atomic>
#include <fstream>
#include <unistd.h>

#include "Program.h"
#include "X11Fixture.h"
#include "X11Reply.h"
#include "XWindows.h"

namespace host {
void PrintTo(const ProcessSerialNumber& process, std::ostream* out) {
    *out << process.high << "/" << process.low;
}
} // namespace host

namespace {

using Psn = host::ProcessSerialNumber;
using Windows = std::vector<host::WindowId>;

constexpr host::Rect kNowhere{};

class X11WindowServer : public X11Fixture {
  protected:
    host::WindowServer& Port() { return machine->WindowServerPort(); }

    xcb_window_t OpenTitled(const std::string& title) {
        const xcb_window_t window = windows->Open(50, 60, 200, 100);
        windows->SetText(window, "_NET_WM_NAME", "UTF8_STRING", title);
        return window;
    }
    /// A shown window of an application that tells its process id.
    xcb_window_t ShowOf(uint32_t pid, const std::string& title) {
        const xcb_window_t window = OpenTitled(title);
        windows->SetNumbers(window, "_NET_WM_PID", "CARDINAL", {pid});
        windows->Show(window);
        return window;
    }

    Windows Listed(const Psn& process) {
        Windows ids;
        EXPECT_EQ(Port().OnScreenWindowList(process, ids), 0);
        return ids;
    }
    std::vector<Psn> Walk() {
        std::vector<Psn> all;
        for (Psn one; Port().NextProcess(one) == 0;)
            all.push_back(one);
        return all;
    }
    Psn Front() {
        Psn front;
        return Port().FrontProcess(front) == 0 ? front : Psn{};
    }
    host::WindowInfo InfoOf(host::WindowId window) {
        host::WindowInfo info;
        EXPECT_EQ(Port().CopyWindowInfo(window, info), 0);
        return info;
    }
    /// Name and identifier.
    std::vector<std::string> NamesOf(const Psn& process) {
        host::ProcessInfo info;
        EXPECT_EQ(Port().ProcessInformation(process, info), 0);
        return {info.name, info.identifier};
    }
    host::Rect RectOf(host::WindowId window) {
        host::Rect rect;
        Port().ScreenRectForWindow(window, rect);
        return rect;
    }
    host::Rect OutlineOf(xcb_window_t window) {
        const xcb_rectangle_t outline = windows->Outline(windows->TopLevel(window));
        return {double(outline.x), double(outline.y), double(outline.width), double(outline.height)};
    }

    std::unique_ptr<Program> manager;
    std::unique_ptr<XWindows> windows;
};

#define NEED_WINDOWS()                                                                                       \
    do {                                                                                                     \
        NEED_X11("800x600x24");                                                                              \
        windows = std::make_unique<XWindows>(server->Display());                                             \
    } while (false)

#define NEED_MANAGER()                                                                                       \
    do {                                                                                                     \
        NEED_WINDOWS();                                                                                      \
        manager = server->StartManager();                                                                    \
        if (!manager)                                                                                        \
            SKIP_OR_FAIL("openbox does not start: is it installed?");                                        \
    } while (false)

TEST_F(X11WindowServer, ReadsTitlesOfEveryKind) {
    NEED_WINDOWS();
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
        EXPECT_EQ(Port().WindowTitle(window, title), isLegacy ? -1 : 0);
        EXPECT_EQ(title, isLegacy ? "untouched" : one.expected);
        EXPECT_EQ(InfoOf(window).name, isLegacy ? std::optional(one.expected) : std::nullopt);
    }
}

TEST_F(X11WindowServer, AssignsWindowsToApplications) {
    NEED_WINDOWS();
    EXPECT_TRUE(Walk().empty());
    const xcb_window_t own = OpenTitled("shown");
    windows->Show(own);
    OpenTitled("not shown");
    const auto foreign = [&](const std::string& title) {
        const xcb_window_t window = OpenTitled(title);
        windows->SetText(window, "WM_CLIENT_MACHINE", "STRING", "no.such.machine");
        windows->SetNumbers(window, "_NET_WM_PID", "CARDINAL", {4711});
        windows->Show(window);
        return window;
    };
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

    const Psn self{0, getpid()}; // The server knows whose the windows are.
    const Psn ofLeader{1, static_cast<int32_t>(alone)};
    const Psn ofClass{1, static_cast<int32_t>(first)};
    EXPECT_EQ(Walk(), (std::vector<Psn>{self, {0, 4711}, ofLeader, ofClass}));
    EXPECT_EQ(Listed(self), Windows{own});
    EXPECT_EQ(Listed({0, 4711}), Windows{byPid});
    EXPECT_EQ(Listed(ofLeader), (Windows{alone, byLeader, byHints}));
    EXPECT_EQ(Listed(ofClass), (Windows{first, second}));

    std::string program;
    std::getline(std::ifstream("/proc/self/comm"), program);
    using Names = std::vector<std::string>;
    EXPECT_EQ(NamesOf(self), (Names{program, program}));
    EXPECT_EQ(NamesOf(ofClass), (Names{"XTerm", "XTerm"}));
    windows->SetText(second, "_GTK_APPLICATION_ID", "UTF8_STRING", "org.example.Terminal");
    EXPECT_EQ(NamesOf(ofClass), (Names{"XTerm", "org.example.Terminal"}));
    EXPECT_EQ(NamesOf(ofLeader)[0], "alone") << "for want of anything better";
    host::ProcessInfo info;
    EXPECT_EQ(Port().ProcessInformation({0, 1}, info), -1);
}

TEST_F(X11WindowServer, FollowsAPlainWindowWithItsBorderAndWithoutItsShadow) {
    NEED_WINDOWS();
    const xcb_window_t window = windows->Open(10, 20, 300, 200, 3);
    EXPECT_EQ(RectOf(window), kNowhere);
    EXPECT_FALSE(InfoOf(window).bounds);
    windows->Show(window);
    EXPECT_TRUE(InfoOf(window).bounds);
    EXPECT_EQ(RectOf(window), (host::Rect{10, 20, 306, 206}));
    windows->Place(window, -40, 500, 100, 150);
    EXPECT_EQ(RectOf(window), (host::Rect{-40, 500, 106, 156}));
    windows->SetNumbers(window, "_GTK_FRAME_EXTENTS", "CARDINAL", {5, 6, 7, 8});
    EXPECT_EQ(RectOf(window), (host::Rect{-35, 507, 95, 141}));
    windows->SetNumbers(window, "_GTK_FRAME_EXTENTS", "CARDINAL", {0xFFFFFFFF, 0, 0, 0});
    EXPECT_EQ(RectOf(window), (host::Rect{-40, 500, 106, 156})) << "no one has such a shadow";
    EXPECT_EQ(InfoOf(window).level, host::WindowLevel::kNormal);
    windows->SetNumbers(window, "_NET_WM_WINDOW_TYPE", "ATOM", {windows->Atom("_NET_WM_WINDOW_TYPE_DOCK")});
    EXPECT_EQ(InfoOf(window).level, host::WindowLevel::kDock);
    windows->Close(window);
    EXPECT_EQ(RectOf(window), kNowhere);
    EXPECT_EQ(RectOf(0), kNowhere);
}

TEST_F(X11WindowServer, WithoutAManagerFindsAndMovesTheFrontWhileThereIsAServer) {
    NEED_WINDOWS();
    EXPECT_EQ(Front(), Psn{});
    const xcb_window_t one = ShowOf(11, "one");
    const xcb_window_t two = ShowOf(22, "two");
    windows->FocusKeyboard(two);
    EXPECT_EQ(Front(), (Psn{0, 22}));
    EXPECT_TRUE(windows->IsAbove(two, one));
    EXPECT_EQ(Port().SetFrontProcess({0, 11}), 0);
    EXPECT_TRUE(windows->IsAbove(one, two));
    EXPECT_EQ(Front(), (Psn{0, 11}));
    EXPECT_EQ(Port().SetFrontProcess({0, 33}), -1);

    server->Kill();
    EXPECT_TRUE(Walk().empty());
    EXPECT_TRUE(Listed({0, 11}).empty());
    EXPECT_EQ(Front(), Psn{});
    EXPECT_EQ(RectOf(one), kNowhere);
    EXPECT_EQ(Port().SetFrontProcess({0, 11}), -1);
    EXPECT_FALSE(Port().IsAvailable());
}

TEST_F(X11WindowServer, WithAManagerSeesFramesAndAsksForTheFront) {
    NEED_MANAGER();
    const xcb_window_t one = ShowOf(11, "one");
    const xcb_window_t three = ShowOf(11, "three");
    ASSERT_TRUE(Await([&] { return Listed({0, 11}).size() == 2; }));
    const xcb_window_t two = ShowOf(22, "two");
    ASSERT_TRUE(Await([&] { return Listed({0, 22}) == Windows{two}; }));
    for (const Psn& front : {Psn{0, 22}, Psn{0, 11}}) {
        ASSERT_EQ(Port().SetFrontProcess(front), 0);
        EXPECT_TRUE(Await([&] { return Front() == front; }));
    }
    const auto isAbove = [&](xcb_window_t upper, xcb_window_t lower) {
        return windows->IsAbove(windows->TopLevel(upper), windows->TopLevel(lower));
    };
    EXPECT_TRUE(Await([&] { return isAbove(one, two) && isAbove(three, two); })) << "all of its windows";

    EXPECT_NE(windows->TopLevel(two), two) << "the manager gave it a frame";
    EXPECT_TRUE(Await([&] { return RectOf(two) == OutlineOf(two); }));
    EXPECT_GT(RectOf(two).height, 100) << "with a title bar";
    const host::Rect before = RectOf(two);
    windows->Place(two, 321, 234, 150, 80);
    EXPECT_TRUE(Await([&] { return RectOf(two) != before && RectOf(two) == OutlineOf(two); }));
    windows->Minimise(two);
    EXPECT_TRUE(Await([&] { return Listed({0, 22}).empty(); }));
    EXPECT_EQ(RectOf(two), kNowhere);
    EXPECT_EQ(Walk(), (std::vector<Psn>{{0, 11}}));
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
    NEED_WINDOWS();
    std::string whyNot;
    const auto session = host::X11Session::Open(server->Display(), host::X11Transport::kSocket, whyNot);
    ASSERT_NE(session, nullptr) << whyNot;
    host::X11Windows& port = session->Windows();
    std::atomic<int> seen{0};
    std::atomic<bool> isOver{false};
    std::thread storm([&] {
        XWindows others(server->Display());
        // Longer where it takes longer until anyone looks.
        for (int round = 0; round < 40 || (seen == 0 && round < 4000); ++round) {
            Windows ids;
            for (int i = 0; i < 10; ++i) {
                ids.push_back(others.Open(i, i, 20, 20));
                others.SetText(ids.back(), "WM_NAME", "STRING", "storm");
                others.Show(ids.back());
            }
            for (const xcb_window_t id : ids)
                others.Close(id);
        }
        isOver = true;
    });
    while (!isOver) {
        for (Psn one; port.NextProcess(one) == 0;) {
            Windows ids;
            port.OnScreenWindowList(one, ids);
            for (const host::WindowId id : ids) {
                std::string title;
                host::WindowInfo info;
                host::Rect rect;
                port.WindowTitle(id, title);
                port.CopyWindowInfo(id, info);
                port.ScreenRectForWindow(id, rect);
                ++seen;
            }
            host::ProcessInfo process;
            Psn front;
            port.ProcessInformation(one, process);
            port.SetFrontProcess(one);
            port.FrontProcess(front);
        }
    }
    storm.join();
    EXPECT_GT(seen, 0);
    EXPECT_TRUE(port.IsAvailable());
    EXPECT_TRUE(Walk().empty());
    while (const host::X11Reply<xcb_generic_event_t> event{xcb_poll_for_event(session->Connection().Xcb())})
        EXPECT_NE(event->response_type, 0) << "an error that nobody took";
}

} // namespace
