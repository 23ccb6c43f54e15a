#include "ShellFixture.h"

#include "vnRegionSelector.h"

namespace {

class RegionSelectorTest : public testing::Test {
  protected:
    RegionSelectorTest() {
        selector.SetScreen(host::Rect{1000, 50, 640, 480});
        selector.SetSelection({1100, 100, 200, 150}); // (100, 100) in the view
        selector.Show();
    }

    void Drag(const host::Point& from, const host::Point& to) {
        view.MouseDown(from);
        view.MouseDragged({(from.x + to.x) / 2, (from.y + to.y) / 2});
        view.MouseDragged(to);
        view.MouseUp();
    }

    FakeDesk machine;
    host::HostScope scope{machine};
    vnUserInterface interface;
    vnRegionSelector selector{interface, "the hint"};
    vnRegionSelectorView& view = selector.View();
};

TEST_F(RegionSelectorTest, HasEightHandles) {
    const struct {
        host::Point place;
        int corner; ///< 0 for none.
    } kCases[] = {
        {{100, 175}, 1}, {{300, 175}, 2}, {{200, 250}, 3}, {{200, 100}, 4}, {{100, 250}, 5}, {{300, 250}, 6},
        {{100, 100}, 7}, {{300, 100}, 8}, {{200, 175}, 0}, {{50, 50}, 0},   {{94, 175}, 1},  {{92, 175}, 0},
    };
    for (const auto& c : kCases) {
        view.MouseMoved(c.place);
        EXPECT_EQ(view.SelectedCorner(), c.corner) << c.place.x << "," << c.place.y;
    }
    EXPECT_EQ(view.RectForCorner(9), (host::Rect{-7, -7, 14, 14}));
    view.SetSelection({100, 100, 10, 10});
    view.MouseMoved({103, 107});
    EXPECT_EQ(view.SelectedCorner(), 1) << "of those that overlap the first one";
}

TEST_F(RegionSelectorTest, DragsWithinTheDisplay) {
    const host::Rect start{100, 100, 200, 150};
    const struct {
        const char* what;
        host::Point from, to;
        host::Rect selection;
    } kCases[] = {
        {"the left edge", {100, 175}, {90, 170}, {90, 100, 210, 150}},
        {"the top right corner", {300, 250}, {310, 270}, {100, 100, 210, 170}},
        {"the bottom left corner", {100, 100}, {110, 120}, {110, 120, 190, 130}},
        {"the right edge, too far to the left", {300, 175}, {20, 175}, {100, 100, 24, 150}},
        {"the left edge, too far: it pushes", {100, 175}, {350, 175}, {350, 100, 24, 150}},
        {"all of it", {200, 175}, {210, 155}, {110, 80, 200, 150}},
        {"all of it beyond the right edge and the top", {200, 175}, {900, 900}, {440, 330, 200, 150}},
        {"all of it beyond the left edge and the bottom", {200, 175}, {-900, -900}, {0, 0, 200, 150}},
        {"a handle, there and back", {300, 250}, {300, 250}, start},
        {"outside", {20, 20}, {60, 60}, start},
    };
    for (const auto& c : kCases) {
        view.SetSelection(start);
        Drag(c.from, c.to);
        EXPECT_EQ(view.Selection(), c.selection) << c.what;
        EXPECT_EQ(view.InfoBox().y, c.selection.y + c.selection.height + 20) << c.what;
        EXPECT_EQ(view.InfoBox().x, c.selection.x + c.selection.width / 2 - 165) << c.what;
    }
    view.SetSelection({100, 100, 20, 20});
    view.MouseDown({110, 110});
    view.MouseUp();
    EXPECT_EQ(view.Selection(), (host::Rect{100, 100, 20, 20})) << "a click changes nothing";
}

} // namespace
