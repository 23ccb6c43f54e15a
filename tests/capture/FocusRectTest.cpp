#include <set>

#include <gtest/gtest.h>

#include "FakeHost.h"
#include "vnFocusManager.h"
#include "vnFocusRect.h"
#include "vnFocusWindow.h"
#include "zString.h"

namespace {

using Preset = vnFocusRect::Preset;

constexpr zRect kDisplay{0, 0, 1919, 1079};

zRecord* AddOne(zRecord& list, unsigned int options, const zRect& rect) {
    auto* preset = new zRecord;
    Preset::SetOptions(*preset, options);
    Preset::SetRect(*preset, rect);
    list.AddChild(preset);
    return preset;
}

TEST(FocusRect, EvaluatesPresetsAgainstTheDisplay) {
    constexpr zRect kSecond{1920, 100, 1920 + 1023, 100 + 767};
    struct {
        unsigned int options;
        zRect rect;
        zRect display;
        zRect expected;
    } const cases[] = {
        {1, {10, 10, 20, 20}, kDisplay, kDisplay},
        {1 | 2, {800, 600}, kDisplay, kDisplay},
        {2, {800, 600}, kDisplay, {560, 240, 1359, 839}},
        {2, {320, 240}, kSecond, {1920 + 352, 100 + 264, 1920 + 671, 100 + 503}},
        {2, {5, 3}, {0, 0, 9, 9}, {3, 4, 7, 6}},
        {2, {0, 0}, kDisplay, kDisplay}, // never set: one pixel
        {2, {2, 2}, kDisplay, {959, 539, 960, 540}},
        {6, {1, 600}, kDisplay, kDisplay}, // either extent is enough
        {6, {800, 1}, kDisplay, kDisplay},
        {2, {3000, 100}, kDisplay, {-540, 490, 2459, 589}}, // larger than the display
        {4, {11, 22, 333, 444}, kDisplay, {11, 22, 333, 444}},
        {4, {-5, -6, 5000, 6000}, kDisplay, {-5, -6, 5000, 6000}},
        {4, {0, 0}, kSecond, kSecond},
        {0, {1, 2, 3, 4}, kDisplay, {1, 2, 3, 4}},
    };
    for (const auto& one : cases) {
        vnFocusRect focus;
        zRecord list;
        focus.SetCurrent(*AddOne(list, one.options, one.rect));
        focus.SetMaximumRect(one.display);
        zRect rect;
        EXPECT_EQ(focus.Rect(rect), 0);
        EXPECT_EQ(rect, one.expected)
            << one.options << ": " << rect.left << "," << rect.top << "," << rect.right << "," << rect.bottom;
    }
}

TEST(FocusRect, WithoutAPresetIsTheWholeDisplay) {
    vnFocusRect focus;
    focus.SetMaximumRect(kDisplay);
    zRect rect;
    EXPECT_EQ(focus.Rect(rect), 0);
    EXPECT_EQ(rect, kDisplay);
}

TEST(FocusRect, ARegionOnAnotherDisplayTurnsEveryPresetIntoTheWholeDisplay) {
    struct {
        int region;
        int display;
        bool isWhole;
    } const cases[] = {{-1, 0, false}, {-1, 3, false}, {1, 0, true},
                       {0, 1, true},   {1, 1, false},  {0, 0, false}};
    vnFocusRect focus;
    zRecord list;
    focus.SetCurrent(*AddOne(list, vnFocusRect::kCentered, zRect(320, 240)));
    focus.SetMaximumRect(kDisplay);
    for (const auto& one : cases) {
        focus.SetCurrentScreenRegionDisplayIndex(one.region);
        focus.SetCurrentDisplayIndex(one.display);
        zRect rect;
        focus.Rect(rect);
        EXPECT_EQ(rect == kDisplay, one.isWhole) << one.region << " " << one.display;
    }
}

TEST(FocusRect, ChangesPresetsByTheirIDAlone) {
    vnFocusRect focus;
    zRecord list;
    focus.AddPreset(*AddOne(list, 2, zRect(10, 10)));
    focus.AddPreset(*AddOne(list, 6, zRect(20, 20)));

    zRecord presets;
    focus.Presets(presets);
    Preset::SetRect(*presets.Child(1), zRect(30, 30));
    focus.ChangePreset(*presets.Child(1));
    focus.ChangePreset(*list.Child(0)); // has no id
    zRecord after;
    focus.Presets(after);
    ASSERT_EQ(after.ChildCount(), 2);
    EXPECT_EQ(Preset::Rect(*after.Child(0)), zRect(10, 10));
    EXPECT_EQ(Preset::Rect(*after.Child(1)), zRect(30, 30));
    EXPECT_EQ(after.Child(1)->AsInt32("preset_id", 0), presets.Child(1)->AsInt32("preset_id", -1));
    EXPECT_TRUE(Preset::IsCustomCentered(*after.Child(1)));
    EXPECT_FALSE(Preset::IsCustomCentered(*after.Child(0)));
}

TEST(FocusManager, OffersTheStandardPresetsAgainAtEachRun) {
    FakeHost machine;
    const host::HostScope scope(machine);
    vnFocusManager manager;
    manager.InitializeFocusRectPresets();
    manager.InitializeFocusRectPresets();
    zRecord presets;
    manager.FocusRect()->Presets(presets);
    ASSERT_EQ(presets.ChildCount(), 10);
    struct {
        const char* title; // The keys, as no language is loaded.
        unsigned int options;
        bool isRegion;
        zRect rect;
    } const expected[] = {{"vn_full_screen", 1, false, {}},
                          {"vn_select_screen_region", 4, true, {}},
                          {"vn_800x600_centered", 2, false, {800, 600}},
                          {"vn_320x240_centered", 2, false, {320, 240}},
                          {"vn_custom_centered", 6, false, {}}};
    std::set<int> ids;
    for (unsigned int i = 0; i < 10; ++i) {
        const zRecord& preset = *presets.Child(i);
        EXPECT_STREQ(Preset::Title(preset), expected[i % 5].title);
        EXPECT_EQ(Preset::Options(preset), expected[i % 5].options);
        EXPECT_EQ(Preset::IsRegionSelection(preset), expected[i % 5].isRegion);
        EXPECT_EQ(Preset::Rect(preset), expected[i % 5].rect);
        EXPECT_EQ(preset.ExistsName("rect"), expected[i % 5].rect != zRect());
        ids.insert(preset.AsInt32("preset_id", 0));
    }
    EXPECT_EQ(ids.size(), 10U);
    EXPECT_FALSE(ids.contains(0));

    zRecord current;
    manager.FocusRect()->Current(current);
    EXPECT_STREQ(Preset::Title(current), "vn_select_screen_region");
    EXPECT_FALSE(current.ExistsName("preset_id"));
}

TEST(FocusManager, CutsWhatIsTooLargeAtItsFarEdges) {
    FakeHost machine;
    const host::HostScope scope(machine);
    vnFocusManager manager;
    struct {
        zRect display;
        zRect expected;
    } const cases[] = {
        {kDisplay, kDisplay},
        {{0, 0, 2047, 2047}, {0, 0, 2047, 2047}},
        {{100, -50, 100 + 2559, -50 + 1439}, {100, -50, 2147, 1389}},
        {{5, 7, 9, 7 + 2048}, {5, 7, 9, 7 + 2047}},
    };
    zRect rect;
    for (const auto& one : cases) {
        manager.FocusRect()->SetMaximumRect(one.display);
        EXPECT_EQ(manager.Rect(rect), 0);
        EXPECT_EQ(rect, one.expected) << one.display.left;
    }
}

TEST(FocusManager, KnowsTwoTypesOfFocus) {
    FakeHost machine;
    const host::HostScope scope(machine);
    vnFocusManager manager;
    EXPECT_EQ(manager.Focused(), 0x72656374U);
    EXPECT_TRUE(manager.CanFocusOn(0x72656374));
    EXPECT_FALSE(manager.CanFocusOn(0x77696E64)) << "this machine has no windows";
    EXPECT_FALSE(manager.CanFocusOn(1));

    manager.SetFocus(1);
    zRect rect(10, 20, 5000, 6000);
    EXPECT_EQ(manager.Rect(rect), -1);
    EXPECT_EQ(rect, zRect(10, 20, 2057, 2067)) << "cut, though nothing was said";
}

} // namespace
