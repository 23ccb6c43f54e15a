#include "vnRemoteControl_mac.h"

#include <memory>

#include "Host.h"
#include "vnController.h"
#include "vnFocusManager.h"
#include "vnFocusRect.h"
#include "vnFocusWindow.h"
#include "zString.h"

int vnRemoteControl_mac::GetMenus(zRecord& out) {
    fExchange.MakeEmpty();
    if (!host::Host::Current().RunLoopPort().PerformOnMainThread([this] { GetMenusMainThread(); }))
        return -1;
    out.Copy(fExchange, true, true);
    return 0;
}

int vnRemoteControl_mac::SetSourceFromMenuItem(zRecord& item) {
    fExchange.Copy(item, true, true);
    if (!host::Host::Current().RunLoopPort().PerformOnMainThread(
            [this] { SetSourceFromMenuItemMainThread(); }))
        return -1;
    return 1;
}

void vnRemoteControl_mac::SetSourceFromMenuItemMainThread() {
    fController.setGuiFromMenuItemRecord(fExchange);
}

void vnRemoteControl_mac::GetMenusMainThread() {
    const Focused shown = focused();
    fController.focusManager().FocusWindow()->Applications(fExchange);
    for (zRecord* application : fExchange.Children()) {
        const bool checked = application->AsInt32("pid_low", 0) == shown.pidLow &&
                             application->AsInt32("pid_high", 0) == shown.pidHigh;
        application->SetBool("checked", checked);
        add_windows(*application, checked, shown.windowId);
    }
    zRecord displays;
    fController.fillDeviceRecord(displays);
    for (const zRecord* display : displays.Children())
        add_screen(*display, shown);
}

vnRemoteControl_mac::Focused vnRemoteControl_mac::focused() const {
    const vnFocusManager& manager = fController.focusManager();
    Focused shown;
    shown.isWindow = manager.Focused() == vnFocusManager::kFocus_Window;
    shown.isRect = manager.Focused() == vnFocusManager::kFocus_Rect;
    if (shown.isWindow) {
        zRecord application;
        zRecord window;
        manager.FocusWindow()->GetFocus(application, window);
        shown.pidLow = application.AsInt32("pid_low", 0);
        shown.pidHigh = application.AsInt32("pid_high", 0);
        shown.windowId = window.AsInt32("window_id", 0);
    }
    if (shown.isRect) {
        zRecord display;
        zRecord preset;
        fController.currentDeviceRecord(display);
        manager.FocusRect()->Current(preset);
        shown.screenNumber = display.AsInt32("NSScreenNumber", -1);
        shown.isFullScreen = vnFocusRect::Preset::Options(preset) < vnFocusRect::kCentered;
    }
    return shown;
}

void vnRemoteControl_mac::add_windows(zRecord& application, bool checked, int focusedWindow) {
    zRecord windows;
    if (fController.focusManager().FocusWindow()->WindowsForApplication(application, windows) != 0)
        return;
    for (const zRecord* window : windows.Children()) {
        auto* copy = new zRecord(*window);
        copy->SetBool("checked", checked && window->AsInt32("window_id", 0) == focusedWindow);
        application.AddChild(copy);
    }
}

void vnRemoteControl_mac::add_screen(const zRecord& display, const Focused& shown) {
    const bool checked = shown.isRect && display.AsInt32("NSScreenNumber", -2) == shown.screenNumber;
    zString title;
    title.sprintf("Screen '%s'", display.AsCString("title", ""));
    auto screen = std::make_unique<zRecord>(display);
    screen->SetBool("checked", checked);
    screen->SetCString("title", title);
    screen->SetCString("id", kScreenDevice);

    auto* whole = new zRecord(*screen);
    whole->SetBool("checked", checked && shown.isFullScreen);
    whole->SetCString("title", "Full Screen");
    whole->SetBool("fullScreen", true);

    auto* region = new zRecord(*screen);
    region->SetBool("checked", checked && !shown.isFullScreen);
    region->SetCString("title", "Select Screen Region");
    region->SetInt32("options", vnFocusRect::kUserSized);

    screen->AddChild(whole);
    screen->AddChild(region);
    fExchange.AddChild(screen.release(), 0);
}
