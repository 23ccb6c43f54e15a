#include "vnController.h"

#include <cstdlib>

#include "Host.h"
#include "vnConfigurableSnapshot.h"
#include "vnFocusManager.h"
#include "vnFocusRect.h"
#include "vnFocusWindow.h"
#include "vnLog.h"
#include "vnRemoteControl_mac.h"
#include "vnUserInterface.h"
#include "zCritical.h"

namespace {

constexpr char kHelpPage[] = "help.html";
constexpr int kRowHeight = 30;   // Points that a group of controls adds to the panel.
constexpr int kLeastExtent = 2;  // Of a rectangle that is meant, each way.
constexpr int kLeastRegion = 11; // Of one that the overlay begins with, each way.
constexpr zRect kUsualRegion(800, 600);
constexpr zRect kNoDisplayRegion(0, 0, 1024, 1024);

constexpr std::initializer_list<vnControl> kSizeControls = {
    vnControl::widthTitleTextField, vnControl::widthTextField, vnControl::heightTitleTextField,
    vnControl::heightTextField};
constexpr std::initializer_list<vnControl> kWindowControls = {vnControl::windowTextField,
                                                              vnControl::fWindowPopup};
constexpr std::initializer_list<vnControl> kRegionControls = {vnControl::selectRegionButton};
constexpr std::initializer_list<vnControl> kSourceControls = {
    vnControl::sourceTextField,      vnControl::fDevicePopup,        vnControl::selectTextField,
    vnControl::fSelectPopup,         vnControl::windowTextField,     vnControl::fWindowPopup,
    vnControl::selectRegionButton,   vnControl::widthTitleTextField, vnControl::widthTextField,
    vnControl::heightTitleTextField, vnControl::heightTextField};

/// The number at the start of what was typed; 0 where there is none, as for one that no display could have.
int typed_number(const vnControlState& field) {
    const long long number = std::strtoll(field.text.c_str(), nullptr, 10);
    return number < 0 || number > 1'000'000 ? 0 : static_cast<int>(number);
}

} // namespace

void vnController::PanelAction(vnControl control) {
    switch (control) {
    case vnControl::muteButton:
        return muteMessage();
    case vnControl::captureVideo:
        return captureVideoMessage();
    case vnControl::captureAudio:
        return captureAudioMessage();
    case vnControl::fDevicePopup:
        return deviceChangeMessage();
    case vnControl::fSelectPopup:
        return selectChangeMessage();
    case vnControl::fWindowPopup:
        return windowChangeMessage();
    case vnControl::widthTextField:
    case vnControl::heightTextField:
        return widthOrHeightChangeMessage();
    case vnControl::selectRegionButton:
        return selectRegionPressed();
    default:
        return;
    }
}

void vnController::muteMessage() {
    // The pause is one flag: it needs no lock.
    fSnapshotConfig->SetPaused(!fSnapshotConfig->IsPaused());
    const bool paused = fSnapshotConfig->IsPaused();
    panel().SetText(vnControl::muteButton, text(paused ? "vn_resume" : "vn_pause"));
    panel().SetEnabled(vnControl::captureVideo, !paused);
    panel().SetEnabled(vnControl::captureAudio, !paused);
    enable_source_controls(!paused);
}

/// One of video and audio always stays on.
void vnController::captureVideoMessage() {
    const bool on = panel().State(vnControl::captureVideo).on;
    vnLog("captureVideoMessage: %d\n", on);
    if (!on && !panel().State(vnControl::captureAudio).on) {
        panel().SetOn(vnControl::captureVideo, true);
        return;
    }
    fSnapshotConfig->EnableVideo(on);
    enable_source_controls(on);
}

void vnController::captureAudioMessage() {
    vnLog("captureAudioMessage: %d\n", panel().State(vnControl::captureAudio).on);
    if (!audioDriverInstalled()) {
        panel().SetOn(vnControl::captureAudio, false);
        offer_audio_driver("vn_audio_driver_title", "vn_audio_driver_message");
    }
    if (panel().State(vnControl::captureAudio).on)
        fSnapshotConfig->EnableAudio(true);
    else if (panel().State(vnControl::captureVideo).on)
        fSnapshotConfig->EnableAudio(false);
    else
        panel().SetOn(vnControl::captureAudio, true);
}

void vnController::enable_source_controls(bool enabled) {
    for (const vnControl control : kSourceControls)
        panel().SetEnabled(control, enabled);
}

void vnController::deviceChangeMessage() {
    const vnControlState& popup = panel().State(vnControl::fDevicePopup);
    if (popup.selected < 0)
        return;
    const bool isLast = popup.selected == static_cast<int>(popup.items.size()) - 1;
    const zAutoCritical lock(fConfigCritical.get());
    if (isLast && focus_window().CanFocusOnWindows())
        focus_on_selected_windows();
    else
        focus_on_selected_display();
    _guiFillFromFocusManager();
}

/// With the lock held.
void vnController::focus_on_selected_windows() {
    fSnapshotConfig->SetCurrentDeviceByIndex(-1);
    fFocusMgr->SetFocus(vnFocusManager::kFocus_Window);
    _updateApplicationPopup();
}

/// With the lock held. The presets begin anew.
void vnController::focus_on_selected_display() {
    const int index = panel().State(vnControl::fDevicePopup).selected;
    focus_rect().RemoveAllPresets();
    fFocusMgr->InitializeFocusRectPresets();
    fFocusMgr->SetFocus(vnFocusManager::kFocus_Rect);
    fSnapshotConfig->SetCurrentDeviceByIndex(index);
    _updateSelectionPopup();
    focus_rect().SetCurrentDisplayIndex(index);
}

void vnController::selectChangeMessage() {
    if (fFocusMgr->Focused() == vnFocusManager::kFocus_Window)
        _updateWindowPopup();
    else
        _focusUsingSelectPopup();
}

void vnController::windowChangeMessage() {
    _updateFocusFromPopups();
}

void vnController::_updateApplicationPopup() {
    focus_window().Applications(fAppPopupData);
    _fillPopup(vnControl::fSelectPopup, fAppPopupData);
    _updateWindowPopup();
}

void vnController::_updateWindowPopup() {
    const zRecord* application = selected_child(fAppPopupData, vnControl::fSelectPopup);
    if (!application)
        return;
    focus_window().WindowsForApplication(*application, fWinPopupData);
    _fillPopup(vnControl::fWindowPopup, fWinPopupData);
    _updateFocusFromPopups();
}

void vnController::_updateFocusFromPopups() {
    const zRecord* application = selected_child(fAppPopupData, vnControl::fSelectPopup);
    const zRecord* window = selected_child(fWinPopupData, vnControl::fWindowPopup);
    if (!application || !window)
        return;
    const zAutoCritical lock(fConfigCritical.get());
    focus_on_window(*application, *window);
}

void vnController::_updateSelectionPopup() {
    const zAutoCritical lock(fConfigCritical.get());
    focus_rect().Presets(fRectPopupData);
    _fillPopup(vnControl::fSelectPopup, fRectPopupData);
    _focusUsingSelectPopup();
}

void vnController::_focusUsingSelectPopup() {
    const zAutoCritical lock(fConfigCritical.get());
    vnSnapshot* device = current_device();
    const zRecord* preset = selected_child(fRectPopupData, vnControl::fSelectPopup);
    if (!device || !preset)
        return;
    focus_rect().SetMaximumRect(device->MaximumRect());
    focus_rect().SetCurrent(*preset);
    fFocusMgr->SetFocus(vnFocusManager::kFocus_Rect);
    _guiFillFromFocusManager();
}

/// Deliberate: a child without a title gets no item, though items then no longer stand for the child of
/// their index. Every list that is shown has titles.
void vnController::_fillPopup(vnControl popup, const zRecord& list) {
    panel().RemoveAllItems(popup);
    for (const zRecord* child : list.Children()) {
        if (const char* title = child->AsCString("title", nullptr))
            panel().AddItem(popup, title);
    }
}

zRecord* vnController::selected_child(const zRecord& list, vnControl popup) const {
    const int index = panel().State(popup).selected;
    return index < 0 ? nullptr : list.Child(static_cast<unsigned int>(index));
}

void vnController::_guiFillFromFocusManager() {
    if (fFocusMgr->Focused() == vnFocusManager::kFocus_Rect)
        fill_from_focus_rect();
    else if (fFocusMgr->Focused() == vnFocusManager::kFocus_Window)
        fill_from_focus_window();
    _guiHideShowFromFocusManager();
}

void vnController::fill_from_focus_rect() {
    zRecord preset;
    focus_rect().Current(preset);
    panel().SelectItem(vnControl::fDevicePopup, fSnapshotConfig->CurrentDeviceIndex());
    focus_rect().Presets(fRectPopupData);
    _fillPopup(vnControl::fSelectPopup, fRectPopupData);
    panel().SelectItemWithTitle(vnControl::fSelectPopup, vnFocusRect::Preset::Title(preset));

    zRect rect = vnFocusRect::Preset::Rect(preset);
    vnSnapshot* device = current_device();
    if (device && (rect.Width() < kLeastExtent || rect.Height() < kLeastExtent))
        rect = device->MaximumRect();
    write_size_fields(rect);
    panel().SetText(vnControl::selectTextField, text("vn_selection_label"));
}

void vnController::fill_from_focus_window() {
    zRecord application;
    zRecord window;
    focus_window().GetFocus(application, window);
    focus_window().Applications(fAppPopupData);
    focus_window().WindowsForApplication(application, fWinPopupData);
    panel().SelectItem(vnControl::fDevicePopup, fSnapshotConfig->Device_Count() + 1); // Behind the separator.
    _fillPopup(vnControl::fSelectPopup, fAppPopupData);
    _fillPopup(vnControl::fWindowPopup, fWinPopupData);
    panel().SelectItemWithTitle(vnControl::fSelectPopup, application.AsCString("title", ""));
    panel().SelectItemWithTitle(vnControl::fWindowPopup, window.AsCString("title", ""));
    panel().SetText(vnControl::selectTextField, text("vn_application_label"));
}

void vnController::write_size_fields(const zRect& rect) {
    panel().SetText(vnControl::widthTextField, std::to_string(rect.Width()));
    panel().SetText(vnControl::heightTextField, std::to_string(rect.Height()));
}

void vnController::_guiHideShowFromFocusManager() {
    zRecord preset;
    focus_rect().Current(preset);
    const bool onWindow = fFocusMgr->Focused() == vnFocusManager::kFocus_Window;
    _setWindowPopupHidden(!onWindow);
    _setWidthHeightHidden(onWindow || !vnFocusRect::Preset::IsCustomCentered(preset));
    _setRegionSelectionButtonHidden(onWindow || !vnFocusRect::Preset::IsRegionSelection(preset));
}

void vnController::_setWidthHeightHidden(bool hidden) {
    set_group_hidden(kSizeControls, hidden);
}

void vnController::_setRegionSelectionButtonHidden(bool hidden) {
    set_group_hidden(kRegionControls, hidden);
}

void vnController::_setWindowPopupHidden(bool hidden) {
    set_group_hidden(kWindowControls, hidden);
}

void vnController::set_group_hidden(std::initializer_list<vnControl> group, bool hidden) {
    if (panel().State(*group.begin()).hidden == hidden)
        return;
    for (const vnControl control : group)
        panel().SetHidden(control, hidden);
    panel().Resize(hidden ? -kRowHeight : kRowHeight);
}

void vnController::widthOrHeightChangeMessage() {
    zRect rect(typed_number(panel().State(vnControl::widthTextField)),
               typed_number(panel().State(vnControl::heightTextField)));
    setFocusRect(rect);
    write_size_fields(rect);
}

void vnController::setFocusRect(zRect& rect) {
    const zAutoCritical lock(fConfigCritical.get());
    vnSnapshot* device = current_device();
    zRecord* preset = selected_child(fRectPopupData, vnControl::fSelectPopup);
    if (!device || !preset)
        return;
    const zRect maximum = device->MaximumRect();
    if (rect.Width() < kLeastExtent || rect.Width() > maximum.Width())
        rect.right = zRect::Add(rect.left, maximum.right - maximum.left);
    if (rect.Height() < kLeastExtent || rect.Height() > maximum.Height())
        rect.bottom = zRect::Add(rect.top, maximum.bottom - maximum.top);
    vnFocusRect::Preset::SetRect(*preset, rect);
    focus_rect().SetMaximumRect(maximum);
    focus_rect().ChangePreset(*preset);
    focus_rect().SetCurrent(*preset);
    fFocusMgr->SetFocus(vnFocusManager::kFocus_Rect);
}

void vnController::selectRegionPressed() {
    prepare_region_selector();
    _regionSelector->Show();
}

void vnController::prepare_region_selector() {
    if (!_regionSelector) {
        _regionSelector =
            std::make_unique<vnRegionSelector>(fInterface, text("vn_select_screen_region_message"));
        _regionSelector->SetDelegate(this);
    }
    const host::Rect screen = currentScreen();
    const zRect region = currentScreenRegionRect();
    panel().SetEnabled(vnControl::selectRegionButton, false);
    _regionSelector->SetScreen(screen);
    // The overlay counts from the bottom edge of its screen.
    const double top = region.top - screen.y;
    _regionSelector->SetSelection({static_cast<double>(region.left), screen.height - region.Height() - top,
                                   static_cast<double>(region.Width()),
                                   static_cast<double>(region.Height())});
}

host::Rect vnController::currentScreen() const {
    host::Displays& displays = host::Host::Current().DisplaysPort();
    zRecord display;
    currentDeviceRecord(display);
    const auto number = static_cast<host::DisplayId>(display.AsInt32("NSScreenNumber", 0));
    const host::Rect place = number == 0 ? host::Rect{} : displays.Bounds(number);
    return place.width > 0 ? place : displays.Bounds(displays.MainDisplay());
}

zRect vnController::currentScreenRegionRect() const {
    vnSnapshot* device = current_device();
    if (!device)
        return kNoDisplayRegion;
    const zRect maximum = device->MaximumRect();
    zRecord preset;
    focus_rect().Current(preset);
    zRect region = vnFocusRect::Preset::Rect(preset);
    if (region.Intersects(maximum) && region.Width() >= kLeastRegion && region.Height() >= kLeastRegion &&
        region != maximum)
        return region;
    region = kUsualRegion;
    region.CenterInParent(maximum);
    return region;
}

void vnController::selectionComplete(const host::Rect& selection) {
    const zAutoCritical lock(fConfigCritical.get());
    if (!_regionSelector->GetSelectionWasCancelled())
        focus_rect().SetCurrentScreenRegionDisplayIndex(focus_rect().GetCurrentDisplayIndex());
    panel().SetEnabled(vnControl::selectRegionButton, true);
    vnSnapshot* device = current_device();
    if (!device || selection.width == 0 || selection.height == 0)
        return;
    const zRect display = device->MaximumRect();
    const int x = static_cast<int>(selection.x);
    const int fromBottom = static_cast<int>(selection.y);
    const int width = static_cast<int>(selection.width);
    const int height = static_cast<int>(selection.height);
    const int bottom = display.bottom - fromBottom;
    zRect region(x, bottom - height + 1, x + width - 1, bottom);
    if (width % 2 != 0) // Of an even width, always.
        ++region.right;
    setFocusRect(region);
}

void vnController::showAppWindow() {
    fInterface.ShowPanel();
}

void vnController::showHelpWindow() {
    host::Desktop& desktop = host::Host::Current().DesktopPort();
    desktop.OpenAddress("file://" + desktop.ResourcePath(kHelpPage));
}

void vnController::quitMessage() {
    fInterface.Terminate();
}

void vnController::setGuiFromMenuItemRecord(const zRecord& record) {
    const zRecord* first = record.Child(0);
    if (!first)
        return;
    if (std::string(vnRemoteControl_mac::kScreenDevice) == record.AsCString("id", ""))
        choose_screen(record, *first);
    else
        choose_window(record, *first);
}

void vnController::choose_screen(const zRecord& screen, const zRecord& item) {
    bool isRegion = false;
    {
        const zAutoCritical lock(fConfigCritical.get());
        fFocusMgr->SetFocus(vnFocusManager::kFocus_Rect);
        fSnapshotConfig->SetCurrentDeviceByIndex(screen.AsInt32("device_index", 0));
        vnSnapshot* device = current_device();
        if (!device)
            return;
        zRecord preset;
        focus_rect().Current(preset);
        vnFocusRect::Preset::SetOptions(preset, item.AsUInt32("options", 0));
        isRegion = vnFocusRect::Preset::IsRegionSelection(preset);
        if (isRegion) // It begins with the region so far, which is about to go.
            prepare_region_selector();
        vnFocusRect::Preset::SetRect(preset, device->MaximumRect());
        focus_rect().ChangePreset(preset);
        focus_rect().SetMaximumRect(device->MaximumRect());
        focus_rect().SetCurrent(preset);
        _guiFillFromFocusManager();
    }
    if (isRegion) { // Without the lock, as it may take a picture of the screen.
        fInterface.Activate();
        _regionSelector->Show();
    }
}

void vnController::choose_window(const zRecord& application, const zRecord& window) {
    zRecord copy;
    copy.Copy(application, false, false);
    {
        const zAutoCritical lock(fConfigCritical.get());
        focus_on_window(copy, window);
        fSnapshotConfig->SetCurrentDeviceByIndex(-1);
    }
    _guiFillFromFocusManager();
}
