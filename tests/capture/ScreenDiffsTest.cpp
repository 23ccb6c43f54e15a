#include "vnScreenDiffs.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "FakeHost.h"

namespace {

/// The lists alone.
class Lists : public vnScreenDiffs {
  public:
    bool CanDoDiffs() override { return true; }
    void Start() override {}
    void Stop() override {}
    using vnScreenDiffs::add_rect;
};

std::vector<zRect> take(vnScreenDiffs& diffs) {
    int count = -1;
    const zRect* rects = diffs.RectList_Borrow(count);
    EXPECT_NE(rects, nullptr);
    const std::vector<zRect> taken(rects, rects + count);
    diffs.RectList_Return();
    return taken;
}

TEST(ScreenDiffs, UniteWhatIsWithinReach) {
    const zRect base(1000, 1000, 1009, 1009);
    const struct {
        zRect other;
        bool unites;
    } rows[] = {
        {{1002, 1002, 1003, 1003}, true},
        {{1009 + 256, 1009 + 256, 1400, 1400}, true},
        {{1009 + 257, 1000, 1400, 1009}, false},
        {{1000, 1009 + 257, 1009, 1400}, false},
        {{600, 600, 1000 - 256, 1000 - 256}, true},
        {{600, 1000, 1000 - 257, 1009}, false},
        {{1000, 600, 1009, 1000 - 257}, false},
        {{1009 + 257, 1009 + 257, 1400, 1400}, false},
        {{-0x7FFFFFFF - 1, 0, -0x7FFFFFFF, 0}, false},
        {{0x7FFFFFFF, 0x7FFFFFFF, 0x7FFFFFFF, 0x7FFFFFFF}, false},
        {{0, 0, 0x7FFFFFFF, 0x7FFFFFFF}, true},
    };
    for (const auto& row : rows) {
        for (const bool reversed : {false, true}) {
            Lists diffs;
            diffs.add_rect(reversed ? row.other : base, false);
            diffs.add_rect(reversed ? base : row.other, false);
            const auto taken = take(diffs);
            if (row.unites)
                EXPECT_EQ(taken, std::vector{base.Union(row.other)})
                    << row.other.left << "," << row.other.top;
            else
                EXPECT_EQ(taken.size(), 2U) << row.other.left << "," << row.other.top;
        }
    }
}

TEST(ScreenDiffs, AGrownRegionIsNotComparedAgain) {
    Lists diffs;
    const zRect left(0, 0, 9, 9);
    const zRect right(600, 0, 609, 9);
    const zRect between(300, 0, 309, 9); // Within reach of neither.
    const zRect bridge(250, 0, 350, 9);  // Within reach of all three.
    for (const zRect& rect : {left, right, between, bridge})
        diffs.add_rect(rect, false);
    EXPECT_EQ(take(diffs), (std::vector{left.Union(bridge), right, between}));
}

TEST(ScreenDiffs, AListOnLoanStaysAsItIs) {
    Lists diffs;
    const zRect first(0, 0, 9, 9);
    const zRect second(2000, 0, 2009, 9);
    diffs.add_rect(first, false);
    int count = 0;
    const zRect* loan = diffs.RectList_Borrow(count);
    diffs.add_rect(second, false);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(loan[0], first);
    diffs.RectList_Return();
    EXPECT_EQ(take(diffs), std::vector{second});
    EXPECT_TRUE(take(diffs).empty());
    EXPECT_TRUE(take(diffs).empty()) << "an empty list swaps all the same";
}

TEST(ScreenDiffs, FollowTheMachinesReports) {
    FakeHost machine;
    host::HostScope scope(machine);
    std::unique_ptr<vnScreenDiffs> diffs(vnScreenDiffs::Factory());
    EXPECT_TRUE(diffs->CanDoDiffs());
    machine.captured = true;
    EXPECT_FALSE(diffs->CanDoDiffs());

    machine.Refresh({{0, 0, 9, 9}});
    diffs->Start();
    machine.Refresh({});
    machine.Refresh({{10.9, -20.9, 5.9, 7.9}, {2000, 0, 1, 1}});
    EXPECT_EQ(take(*diffs), (std::vector{zRect(10, -20, 14, -14), zRect(2000, 0, 2000, 0)}))
        << "origin and size are truncated each on its own";
    diffs->Stop();
    EXPECT_TRUE(machine.refreshListeners.empty());
}

} // namespace
