#include "BuiltinHost.h"

#include <cstring>
#include <set>

#include <gtest/gtest.h>

#include "SetClock.h"

namespace {

class BuiltinWindows : public testing::Test {
  protected:
    host::Rect RectOf(host::WindowId window) {
        host::Rect rect;
        EXPECT_EQ(server.ScreenRectForWindow(window, rect), 0);
        return rect;
    }
    /// The colours that the screen shows there, without the undefined bytes.
    std::vector<uint32_t> Grab(const host::Rect& area) {
        host::Image image;
        std::vector<uint32_t> colours;
        EXPECT_EQ(machine.DisplaysPort().Picture(area, image), 0);
        for (int y = 0; y < image.height; ++y) {
            for (int x = 0; x < image.width; ++x) {
                uint32_t pixel = 0;
                std::memcpy(&pixel, image.pixels + static_cast<ptrdiff_t>(y) * image.rowBytes + x * 4, 4);
                colours.push_back(pixel & 0xFFFFFF);
            }
        }
        return colours;
    }

    SetClock clock;
    host::BuiltinHost machine{clock};
    host::WindowServer& server = machine.WindowServerPort();
};

TEST_F(BuiltinWindows, BelongToTwoApplications) {
    ASSERT_TRUE(server.IsAvailable());
    std::set<std::string> names;
    std::set<std::string> titles;
    host::ProcessSerialNumber process;
    while (server.NextProcess(process) == 0) {
        host::ProcessInfo info;
        std::vector<host::WindowId> windows;
        std::string title;
        ASSERT_EQ(server.ProcessInformation(process, info), 0);
        ASSERT_EQ(server.OnScreenWindowList(process, windows), 0);
        ASSERT_EQ(windows.size(), 1U);
        ASSERT_EQ(server.WindowTitle(windows[0], title), 0);
        EXPECT_FALSE(info.identifier.empty());
        names.insert(info.name);
        titles.insert(title);
        host::ProcessSerialNumber front;
        EXPECT_EQ(server.SetFrontProcess(process), 0);
        EXPECT_EQ(server.FrontProcess(front), 0);
        EXPECT_EQ(front, process);
    }
    EXPECT_EQ(names.size(), 2U);
    EXPECT_EQ(titles.size(), 2U);
    host::Rect rect;
    for (const host::WindowId unknown : {0U, 3U, 0xFFFFFFFFU})
        EXPECT_NE(server.ScreenRectForWindow(unknown, rect), 0);
}

TEST_F(BuiltinWindows, GlideWithTheClockAloneWithinADisplayEach) {
    for (const host::WindowId window : {1U, 2U}) {
        const host::Rect display = machine.DisplaysPort().Bounds(window);
        std::set<double> places;
        for (clock.microseconds = 0; clock.microseconds < 8'000'000; clock.microseconds += 50'000) {
            const host::Rect rect = RectOf(window);
            EXPECT_GE(rect.x, display.x);
            EXPECT_GE(rect.y, display.y);
            EXPECT_LE(rect.x + rect.width, display.x + display.width);
            EXPECT_LE(rect.y + rect.height, display.y + display.height);
            places.insert(rect.x + rect.y);
        }
        EXPECT_GT(places.size(), 50U);
    }
}

TEST_F(BuiltinWindows, AreSeenWhereTheyAreSaidToBe) {
    for (const host::WindowId window : {1U, 2U}) {
        clock.microseconds = 1'000'000;
        const host::Rect before = RectOf(window);
        const auto picture = Grab(before);
        clock.microseconds = 3'000'000; // A lap of its block later.
        ASSERT_NE(RectOf(window).x + RectOf(window).y, before.x + before.y);
        EXPECT_EQ(Grab(RectOf(window)), picture);
        EXPECT_NE(Grab(before), picture) << "it has moved on";
        clock.microseconds = 3'500'000;
        EXPECT_NE(Grab(RectOf(window)), picture) << "something moves in it";
    }
}

} // namespace
