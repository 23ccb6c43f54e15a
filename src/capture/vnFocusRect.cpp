#include "vnFocusRect.h"

#include "zIDGenerator.h"

namespace {

constexpr const char* kTitle = "title";
constexpr const char* kOptions = "options";
constexpr const char* kRect = "rect";

/// Anything smaller is a rectangle that was never set.
constexpr int kMinimumExtent = 2;

} // namespace

void vnFocusRect::Preset::SetTitle(zRecord& preset, const char* title) {
    preset.SetCString(kTitle, title);
}

void vnFocusRect::Preset::SetRect(zRecord& preset, const zRect& rect) {
    preset.SetRect(kRect, rect);
}

void vnFocusRect::Preset::SetOptions(zRecord& preset, unsigned int options) {
    preset.SetUInt32(kOptions, options);
}

const char* vnFocusRect::Preset::Title(const zRecord& preset) {
    return preset.AsCString(kTitle, "");
}

zRect vnFocusRect::Preset::Rect(const zRecord& preset) {
    return preset.AsRect(kRect, zRect());
}

unsigned int vnFocusRect::Preset::Options(const zRecord& preset) {
    return preset.AsUInt32(kOptions, 0);
}

bool vnFocusRect::Preset::IsCustomCentered(const zRecord& preset) {
    return (Options(preset) & (kCentered | kUserSized)) == (kCentered | kUserSized);
}

bool vnFocusRect::Preset::IsRegionSelection(const zRecord& preset) {
    return (Options(preset) & (kCentered | kUserSized)) == kUserSized;
}

vnFocusRect::vnFocusRect() : fPresetIDKey(zVariableKey("preset_id")) {}

int vnFocusRect::Rect(zRect& rect) {
    if (is_whole_display()) {
        rect = fMaximumRect;
        return 0;
    }
    rect = Preset::Rect(fCurrent);
    if (rect.Width() < kMinimumExtent || rect.Height() < kMinimumExtent)
        rect = fMaximumRect;
    if (Preset::Options(fCurrent) & kCentered)
        rect.CenterInParent(fMaximumRect);
    return 0;
}

void vnFocusRect::AddPreset(const zRecord& preset) {
    auto* copy = new zRecord(preset);
    copy->SetInt32(fPresetIDKey, static_cast<int>(zIDGenerator::Generate('p')));
    fPresets.AddChild(copy);
}

void vnFocusRect::ChangePreset(const zRecord& preset) {
    const int id = preset.AsInt32(fPresetIDKey, 0);
    if (zRecord* own = fPresets.FindChildByInt32Variable(fPresetIDKey, id, false, 1))
        own->Copy(preset, true, true);
}

void vnFocusRect::Presets(zRecord& out) const {
    out.Copy(fPresets, true, true);
}

void vnFocusRect::SetCurrent(const zRecord& preset) {
    fCurrent.Copy(preset, true, true);
}

void vnFocusRect::Current(zRecord& out) const {
    out.Copy(fCurrent, true, true);
}

bool vnFocusRect::is_whole_display() const {
    // Deliberate: a region drawn on one display turns every preset into the whole display on the others, not
    // the region alone. The panel relies on it until a region is drawn there.
    const bool regionIsElsewhere =
        fScreenRegionDisplayIndex >= 0 && fScreenRegionDisplayIndex != fCurrentDisplayIndex;
    return regionIsElsewhere || Preset::Options(fCurrent) & kWholeDisplay;
}
