#include "vnFocusManager.h"

#include "vnFocusRect.h"
#include "vnFocusWindow.h"
#include "vnPatois.h"

namespace {

/// The largest picture that the front offers, each way.
constexpr int kMaximumExtent = 2048;

struct StandardPreset {
    const char* titleKey;
    unsigned int options;
    zRect rect;
    bool becomesCurrent;
};

constexpr StandardPreset kStandardPresets[] = {
    {"vn_full_screen", vnFocusRect::kWholeDisplay, {}, true},
    {"vn_select_screen_region", vnFocusRect::kUserSized, {}, true},
    {"vn_800x600_centered", vnFocusRect::kCentered, {800, 600}, false},
    {"vn_320x240_centered", vnFocusRect::kCentered, {320, 240}, false},
    {"vn_custom_centered", vnFocusRect::kCentered | vnFocusRect::kUserSized, {}, false},
};

} // namespace

vnFocusManager::vnFocusManager()
    : fFocusWindow(vnFocusWindow::Factory()),
      fFocusRect(std::make_unique<vnFocusRect>()),
      fMaximumWidth(kMaximumExtent),
      fMaximumHeight(kMaximumExtent) {}

vnFocusManager::~vnFocusManager() = default;

int vnFocusManager::Rect(zRect& rect) {
    int result = -1;
    if (fFocusType == kFocus_Window)
        result = fFocusWindow->Rect(rect);
    else if (fFocusType == kFocus_Rect)
        result = fFocusRect->Rect(rect);

    // Deliberate: cuts what was passed in, too, when there is no rectangle. The front falls back by itself.
    if (rect.Width() > fMaximumWidth)
        rect.right = zRect::Add(rect.left, fMaximumWidth - 1);
    if (rect.Height() > fMaximumHeight)
        rect.bottom = zRect::Add(rect.top, fMaximumHeight - 1);
    return result;
}

bool vnFocusManager::CanFocusOn(uint32_t type) const {
    return type == kFocus_Rect || (type == kFocus_Window && fFocusWindow->CanFocusOnWindows());
}

void vnFocusManager::InitializeFocusRectPresets() {
    // Deliberate: the presets of an earlier run stay. The panel runs this at each change of the display and
    // takes the list as it comes.
    for (const StandardPreset& standard : kStandardPresets) {
        zRecord preset;
        vnFocusRect::Preset::SetTitle(preset, vnPatois::Default()->Lookup(standard.titleKey));
        vnFocusRect::Preset::SetOptions(preset, standard.options);
        if (standard.rect != zRect())
            vnFocusRect::Preset::SetRect(preset, standard.rect);
        fFocusRect->AddPreset(preset);
        if (standard.becomesCurrent)
            fFocusRect->SetCurrent(preset);
    }
}
