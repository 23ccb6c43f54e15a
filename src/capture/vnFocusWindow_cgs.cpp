#include "vnFocusWindow_cgs.h"

#include <algorithm>
#include <memory>

#include "Host.h"
#include "zRect.h"

namespace {

constexpr const char* kTitle = "title";
constexpr const char* kID = "id";
constexpr const char* kPidHigh = "pid_high";
constexpr const char* kPidLow = "pid_low";
constexpr const char* kWindowID = "window_id";

/// Windows that show nothing may be called that.
constexpr const char* kBlank = " ";

/// Windows of this size, each way, are helpers that no one sees.
constexpr double kHelperExtent = 15;

/// Whoever lies in one of these layers and means to be found has a name.
constexpr int kSpecialLevels[] = {
    host::WindowLevel::kDesktopIcon, host::WindowLevel::kDragging, host::WindowLevel::kStatus,
    host::WindowLevel::kCursor,      host::WindowLevel::kDock,     host::WindowLevel::kOverlay + 1,
};

host::WindowServer& server() {
    return host::Host::Current().WindowServerPort();
}

host::ProcessSerialNumber psn_of(const zRecord& application) {
    return {application.AsInt32(kPidHigh, 0), application.AsInt32(kPidLow, 0)};
}

bool is_ordinary(int level) {
    return level >= host::WindowLevel::kNormal &&
           std::find(std::begin(kSpecialLevels), std::end(kSpecialLevels), level) == std::end(kSpecialLevels);
}

/// Whether a window without a title of its own is worth showing.
bool is_shown(const host::WindowInfo& info) {
    if (!info.name || !info.bounds)
        return false;
    if (info.bounds->width == kHelperExtent && info.bounds->height == kHelperExtent)
        return false;
    return is_ordinary(info.level) || !info.name->empty();
}

/// The title to show a window by; false for one that isn't worth showing.
bool title_to_show(host::WindowId window, std::string& title) {
    if (server().WindowTitle(window, title) == 0)
        return !title.empty() && title != kBlank;
    host::WindowInfo info;
    if (server().CopyWindowInfo(window, info) != 0 || !is_shown(info))
        return false;
    title = *info.name;
    return title != kBlank;
}

} // namespace

int vnFocusWindow_cgs::Rect(zRect& rect) {
    const auto window = static_cast<host::WindowId>(focused_window().AsInt32(kWindowID, 0));
    host::Rect place;
    if (server().ScreenRectForWindow(window, place) != 0)
        return -1;
    rect = zRect::FromOriginAndSize(place.x, place.y, place.width, place.height);
    return 0;
}

bool vnFocusWindow_cgs::CanFocusOnWindows() {
    return server().IsAvailable();
}

int vnFocusWindow_cgs::Applications(zRecord& list) {
    list.MakeEmpty();
    if (!server().IsAvailable())
        return 0;
    host::ProcessSerialNumber psn;
    int result = 0;
    while ((result = server().NextProcess(psn)) == 0) {
        if (windows_for_psn(psn, nullptr) == 0)
            continue;
        auto application = std::make_unique<zRecord>();
        if (app_for_psn(psn, *application))
            list.AddChild(application.release());
    }
    return result;
}

bool vnFocusWindow_cgs::FrontmostApplication(zRecord* application) {
    host::ProcessSerialNumber psn;
    if (server().FrontProcess(psn) != 0)
        return false;
    return !application || app_for_psn(psn, *application);
}

int vnFocusWindow_cgs::MakeFrontmost(const zRecord& application, const zRecord&) {
    return server().SetFrontProcess(psn_of(application));
}

int vnFocusWindow_cgs::WindowsForApplication(const zRecord& application, zRecord& list) {
    // The two may be one record.
    const host::ProcessSerialNumber psn = psn_of(application);
    list.MakeEmpty();
    if (server().IsAvailable())
        windows_for_psn(psn, &list);
    return 0;
}

/// Fills the record; false, with the record as it was, for an application that can't be named.
bool vnFocusWindow_cgs::app_for_psn(const host::ProcessSerialNumber& psn, zRecord& record) {
    host::ProcessInfo info;
    if (server().ProcessInformation(psn, info) != 0 || info.name.empty() || info.identifier.empty())
        return false;
    record.SetCString(kTitle, info.name.c_str());
    record.SetCString(kID, info.identifier.c_str());
    record.SetInt32(kPidHigh, psn.high);
    record.SetInt32(kPidLow, psn.low);
    return true;
}

/// How many windows of the application are worth showing; the list, if there is one, gets their records.
int vnFocusWindow_cgs::windows_for_psn(const host::ProcessSerialNumber& psn, zRecord* list) {
    std::vector<host::WindowId> windows;
    if (server().OnScreenWindowList(psn, windows) != 0)
        return 0;
    int count = 0;
    for (const host::WindowId window : windows) {
        std::string title;
        if (!title_to_show(window, title))
            continue;
        ++count;
        if (!list)
            continue;
        auto record = std::make_unique<zRecord>();
        record->SetCString(kTitle, title.c_str());
        record->SetInt32(kWindowID, static_cast<int>(window));
        list->AddChild(record.release());
    }
    return count;
}
