#include "BuiltinHost.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include <gtest/gtest.h>

#include "SetClock.h"

namespace {

constexpr int64_t kTimes[] = {0,         16'667,          1'999'999,
                              4'000'000, 359'999'999'999, std::numeric_limits<int64_t>::max()};

/// The colours of an area, without the undefined bytes.
std::vector<uint32_t> grab(host::Host& machine, const host::Rect& area) {
    host::Image image;
    std::vector<uint32_t> colours;
    if (machine.DisplaysPort().Picture(area, image) != 0)
        return colours;
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x) {
            uint32_t pixel = 0;
            std::memcpy(&pixel, image.pixels + static_cast<ptrdiff_t>(y) * image.rowBytes + x * 4, 4);
            colours.push_back(pixel & 0xFFFFFF);
        }
    }
    return colours;
}

std::vector<uint32_t> part_of(const std::vector<uint32_t>& whole, int rowLength, int x, int y, int width,
                              int height) {
    std::vector<uint32_t> part;
    for (int row = y; row < y + height; ++row) {
        const auto first = whole.begin() + static_cast<ptrdiff_t>(row) * rowLength + x;
        part.insert(part.end(), first, first + width);
    }
    return part;
}

TEST(BuiltinDisplays, AreTwoSideBySide) {
    host::BuiltinHost machine;
    host::Displays& displays = machine.DisplaysPort();
    std::vector<host::DisplayId> ids{77};
    ASSERT_EQ(displays.ActiveDisplays(ids), 0);
    ASSERT_EQ(ids.size(), 2U);
    EXPECT_EQ(displays.MainDisplay(), ids[0]);
    const host::Rect first = displays.Bounds(ids[0]);
    const host::Rect second = displays.Bounds(ids[1]);
    EXPECT_EQ(first.x, 0);
    EXPECT_EQ(first.width, 1280);
    EXPECT_EQ(first.height, 720);
    EXPECT_EQ(second.x, 1280);
    EXPECT_EQ(second.width, 1024);
    EXPECT_EQ(second.height, 768);
    EXPECT_NE(displays.ProductName(ids[0]), displays.ProductName(ids[1]));
    for (const host::DisplayId unknown : {0U, 3U, 0xFFFFFFFFU}) {
        EXPECT_EQ(displays.Bounds(unknown).width, 0);
        EXPECT_EQ(displays.ProductName(unknown), "");
    }
}

TEST(BuiltinDisplays, ShowTheSameAtTheSameTimeWhateverWasShownBefore) {
    SetClock clock;
    host::BuiltinHost cropped(clock);
    const int crops[][4] = {
        {0, 0, 1, 1},          {400, 500, 500, 60}, {0, 615, 1280, 50},    {600, 0, 3, 720},
        {1200, 600, 200, 168}, {2303, 767, 1, 1},   {1500, 540, 700, 200},
    };
    for (const int64_t time : kTimes) {
        clock.microseconds = time;
        host::BuiltinHost fresh(clock);
        const auto all = grab(fresh, {0, 0, 2304, 768});
        for (const auto& c : crops) {
            EXPECT_EQ(grab(cropped, {double(c[0]), double(c[1]), double(c[2]), double(c[3])}),
                      part_of(all, 2304, c[0], c[1], c[2], c[3]))
                << time << " at " << c[0] << "," << c[1];
        }
    }
}

TEST(BuiltinDisplays, MoveWithTheClockOnly) {
    SetClock clock;
    host::BuiltinHost machine(clock);
    for (const host::Rect& display : {host::Rect{0, 0, 1280, 720}, host::Rect{1280, 0, 1024, 768}}) {
        clock.microseconds = 1'000'000;
        const auto before = grab(machine, display);
        EXPECT_EQ(grab(machine, display), before);
        clock.microseconds += 16'667;
        const auto after = grab(machine, display);
        ASSERT_EQ(after.size(), before.size());
        size_t changed = 0;
        for (size_t i = 0; i < after.size(); ++i)
            changed += after[i] != before[i];
        EXPECT_GT(changed, 50U);
        EXPECT_LT(changed, after.size() / 50);
    }
}

/// Collects what a machine reports, for a while of its run loop.
class Listening : public host::RefreshListener {
  public:
    explicit Listening(host::Host& machine) : fMachine(machine), fScope(machine) {
        machine.DisplaysPort().RegisterRefreshListener(*this);
    }
    ~Listening() override { fMachine.DisplaysPort().UnregisterRefreshListener(*this); }

    std::vector<host::Rect> Await() {
        fAreas.clear();
        const int bound = fMachine.RunLoopPort().AddTimer(200, [&] { fMachine.RunLoopPort().Stop(); });
        fMachine.RunLoopPort().Run();
        fMachine.RunLoopPort().RemoveTimer(bound);
        return fAreas;
    }

  private:
    void ScreenRefreshed(std::span<const host::Rect> areas) override {
        fAreas.assign(areas.begin(), areas.end());
        fMachine.RunLoopPort().Stop();
    }

    host::Host& fMachine;
    host::HostScope fScope;
    std::vector<host::Rect> fAreas;
};

TEST(BuiltinDisplays, ReportWhatMoves) {
    SetClock clock;
    host::BuiltinHost machine(clock);
    const host::Rect desktop{0, 0, 2304, 768};
    // From one time to the next: within a flash, out of it, a while in the dark, into the next one.
    const int64_t times[] = {50'000, 99'999, 100'001, 516'667, 1'000'000, 1'099'999, 7'050'000};
    clock.microseconds = 20'000;
    Listening listening(machine);
    EXPECT_TRUE(listening.Await().empty()) << "time stands still";
    for (const int64_t time : times) {
        const auto before = grab(machine, desktop);
        clock.microseconds = time;
        const auto reported = listening.Await();
        const auto after = grab(machine, desktop);
        for (size_t i = 0; i < after.size(); ++i) {
            const auto x = static_cast<double>(i % 2304);
            const auto y = static_cast<double>(i / 2304);
            ASSERT_TRUE(before[i] == after[i] || std::any_of(reported.begin(), reported.end(),
                                                             [&](const host::Rect& area) {
                                                                 return x >= area.x &&
                                                                        x < area.x + area.width &&
                                                                        y >= area.y &&
                                                                        y < area.y + area.height;
                                                             }))
                << time << " at " << x << "," << y;
        }
    }
}

TEST(BuiltinDisplays, FlashAtEveryWholeSecond) {
    SetClock clock;
    host::BuiltinHost machine(clock);
    const host::Rect middles[] = {{100, 520, 1, 1}, {1280 + 105, 546, 1, 1}};
    const struct {
        int64_t time;
        uint32_t colour;
    } rows[] = {
        {999'999, 0}, {1'000'000, 0xFFFFFF}, {1'099'999, 0xFFFFFF}, {1'100'000, 0}, {77'000'000, 0xFFFFFF}};
    for (const auto& row : rows) {
        clock.microseconds = row.time;
        for (const host::Rect& middle : middles)
            EXPECT_EQ(grab(machine, middle), std::vector<uint32_t>{row.colour}) << row.time;
    }
}

TEST(BuiltinDisplays, AreBlackOutsideOfBoth) {
    host::BuiltinHost machine;
    const std::vector<uint32_t> black(50 * 40, 0);
    for (const host::Rect& outside : {host::Rect{-50, -40, 50, 40}, host::Rect{2304, 0, 50, 40},
                                      host::Rect{100, 725, 50, 40}, host::Rect{-60000, 60000, 50, 40}})
        EXPECT_EQ(grab(machine, outside), black) << outside.x << "," << outside.y;

    // Partly outside: what is inside stays in its place.
    const auto corner = grab(machine, {-10, -20, 50, 40});
    const auto inside = grab(machine, {0, 0, 40, 20});
    EXPECT_EQ(part_of(corner, 50, 10, 20, 40, 20), inside);
    EXPECT_EQ(part_of(corner, 50, 0, 0, 50, 20), std::vector<uint32_t>(50 * 20, 0));
    EXPECT_EQ(part_of(corner, 50, 0, 20, 10, 20), std::vector<uint32_t>(10 * 20, 0));
}

TEST(BuiltinDisplays, RefuseAbsurdAreas) {
    host::BuiltinHost machine;
    const double nan = std::nan("");
    const double infinity = std::numeric_limits<double>::infinity();
    const host::Rect absurd[] = {
        {0, 0, 0, 10},
        {0, 0, 10, 0},
        {0, 0, -1, 10},
        {0, 0, 0.9, 10},
        {nan, 0, 10, 10},
        {0, nan, 10, 10},
        {0, 0, nan, 10},
        {0, 0, 10, infinity},
        {-infinity, 0, 10, 10},
        {2147483648.0, 0, 10, 10},
        {0, 0, 2147483648.0, 10},
        {0, -1e300, 10, 10},
        {0, 0, 65535, 65535},
    };
    host::Image image;
    for (const host::Rect& area : absurd)
        EXPECT_EQ(machine.DisplaysPort().Picture(area, image), -1) << area.x << "," << area.width;
    EXPECT_EQ(image.pixels, nullptr);
    EXPECT_EQ(machine.DisplaysPort().Picture({3.9, 3.9, 2.9, 1.9}, image), 0);
    EXPECT_EQ(image.width, 2);
    EXPECT_EQ(image.height, 1);
}

} // namespace
