// The built-in test card: what it shows, says and reports, by a clock that the test sets.

#include "BuiltinHost.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include <gtest/gtest.h>

#include "AbsurdAreas.h"
#include "SetClock.h"

namespace {

constexpr int kWidth = 2304; ///< Both displays side by side.
constexpr int kHeight = 768;
constexpr host::Rect kDesktop{0, 0, kWidth, kHeight};

using Colours = std::vector<uint32_t>;

/// The colours of an area, without the undefined bytes.
Colours grab(host::Host& machine, const host::Rect& area) {
    host::Image image;
    Colours colours;
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

Colours part_of(const Colours& whole, int rowLength, int x, int y, int width, int height) {
    Colours part;
    for (int row = y; row < y + height; ++row) {
        const auto first = whole.begin() + static_cast<ptrdiff_t>(row) * rowLength + x;
        part.insert(part.end(), first, first + width);
    }
    return part;
}

bool holds(const host::Rect& area, double x, double y) {
    return x >= area.x && x < area.x + area.width && y >= area.y && y < area.y + area.height;
}

class BuiltinDisplays : public testing::Test, private host::RefreshListener {
  protected:
    BuiltinDisplays() { machine.DisplaysPort().RegisterRefreshListener(*this); }
    ~BuiltinDisplays() override { machine.DisplaysPort().UnregisterRefreshListener(*this); }

    /// Runs the loop until something is reported; nothing when time stands still.
    std::vector<host::Rect> AwaitReport(int milliseconds) {
        reported.clear();
        const int bound = machine.RunLoopPort().AddTimer(milliseconds, [&] { machine.RunLoopPort().Stop(); });
        machine.RunLoopPort().Run();
        machine.RunLoopPort().RemoveTimer(bound);
        return reported;
    }

    SetClock clock;
    host::BuiltinHost machine{clock};
    host::HostScope scope{machine};

  private:
    void ScreenRefreshed(std::span<const host::Rect> areas) override {
        reported.assign(areas.begin(), areas.end());
        machine.RunLoopPort().Stop();
    }

    std::vector<host::Rect> reported;
};

TEST_F(BuiltinDisplays, ShowTheSameAtTheSameTimeWhateverWasShownBefore) {
    const int crops[][4] = {
        {0, 0, 1, 1},          {400, 500, 500, 60}, {0, 615, 1280, 50},    {600, 0, 3, 720},
        {1200, 600, 200, 168}, {2303, 767, 1, 1},   {1500, 540, 700, 200},
    };
    const int64_t times[] = {0,         16'667,          1'999'999,
                             4'000'000, 359'999'999'999, std::numeric_limits<int64_t>::max()};
    for (const int64_t time : times) {
        clock.microseconds = time;
        host::BuiltinHost fresh(clock);
        const Colours all = grab(fresh, kDesktop);
        for (const auto& c : crops) {
            EXPECT_EQ(grab(machine, {double(c[0]), double(c[1]), double(c[2]), double(c[3])}),
                      part_of(all, kWidth, c[0], c[1], c[2], c[3]))
                << time << " at " << c[0] << "," << c[1];
        }
    }
}

TEST_F(BuiltinDisplays, ReportAllThatMoves) {
    // From one time to the next: within a flash, out of it, a while in the dark, into the next one.
    const int64_t times[] = {50'000, 99'999, 100'001, 516'667, 1'000'000, 1'099'999, 7'050'000};
    EXPECT_TRUE(AwaitReport(200).empty()) << "time stands still";
    for (const int64_t time : times) {
        const Colours before = grab(machine, kDesktop);
        clock.microseconds = time;
        const std::vector<host::Rect> areas = AwaitReport(20000);
        const Colours after = grab(machine, kDesktop);
        EXPECT_NE(before, after) << time;
        for (size_t i = 0; i < after.size(); ++i) {
            const auto x = static_cast<double>(i % kWidth);
            const auto y = static_cast<double>(i / kWidth);
            ASSERT_TRUE(before[i] == after[i] ||
                        std::any_of(areas.begin(), areas.end(),
                                    [&](const host::Rect& area) { return holds(area, x, y); }))
                << time << " at " << x << "," << y;
        }
    }
}

TEST_F(BuiltinDisplays, FlashAtEveryWholeSecond) {
    const struct {
        int64_t time;
        uint32_t colour;
    } rows[] = {
        {999'999, 0}, {1'000'000, 0xFFFFFF}, {1'099'999, 0xFFFFFF}, {1'100'000, 0}, {77'000'000, 0xFFFFFF}};
    for (const auto& row : rows) {
        clock.microseconds = row.time;
        for (const host::Rect& middle : {host::Rect{100, 520, 1, 1}, {1280 + 105, 546, 1, 1}})
            EXPECT_EQ(grab(machine, middle), Colours{row.colour}) << row.time;
    }
}

TEST_F(BuiltinDisplays, AreBlackOutsideOfBothAndRefuseAbsurdAreas) {
    for (const host::Rect& outside : {host::Rect{-50, -40, 50, 40}, host::Rect{2304, 0, 50, 40},
                                      host::Rect{100, 725, 50, 40}, host::Rect{-60000, 60000, 50, 40}})
        EXPECT_EQ(grab(machine, outside), Colours(50 * 40, 0)) << outside.x << "," << outside.y;

    // Partly outside: what is inside stays in its place.
    const Colours corner = grab(machine, {-10, -20, 50, 40});
    EXPECT_EQ(part_of(corner, 50, 10, 20, 40, 20), grab(machine, {0, 0, 40, 20}));
    EXPECT_EQ(part_of(corner, 50, 0, 0, 50, 20), Colours(50 * 20, 0));
    EXPECT_EQ(part_of(corner, 50, 0, 20, 10, 20), Colours(10 * 20, 0));

    host::Image image;
    for (const host::Rect& area : kAbsurdAreas)
        EXPECT_EQ(machine.DisplaysPort().Picture(area, image), -1) << area.x << "," << area.width;
    EXPECT_EQ(machine.DisplaysPort().Picture({3.9, 3.9, 2.9, 1.9}, image), 0);
    EXPECT_EQ(image.width, 2);
    EXPECT_EQ(image.height, 1);
}

} // namespace
