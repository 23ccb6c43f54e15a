#include "vnController.h"

#include <utility>

#include "vnConfigurableSnapshot.h"
#include "vnFocusManager.h"
#include "vnFocusWindow.h"
#include "vnLog.h"
#include "vnUserInterface.h"
#include "zCritical.h"
#include "zString.h"

namespace {

constexpr char kStatusImage[] = "gpMac16.png";

const char* title_of(const zRecord& record) {
    return record.AsCString("title", "");
}

zRecord* child_by_title(const zRecord& list, const std::string& title) {
    for (zRecord* child : list.Children()) {
        if (title == title_of(*child))
            return child;
    }
    return nullptr;
}

vnMenuItem item(const std::string& title, vnMenuAction action) {
    vnMenuItem result;
    result.title = title;
    result.action = action;
    return result;
}

} // namespace

void vnController::status_on() {
    buildStatusMenu();
    fInterface.SetMenuDelegate(this);
    fInterface.ShowStatusItem(kStatusImage);
}

/// Deliberate: the applications are only listed afresh by the panel, so that opening this menu asks the
/// machine for their windows alone.
void vnController::buildStatusMenu() {
    vnMenu menu;
    menu.push_back(item(text("vn_menu_show_glasspane"), vnMenuAction::showAppWindow));
    if (fAppPopupData.IsEmpty())
        focus_window().Applications(fAppPopupData);
    menu.push_back(vnMenuItem::Separator());
    add_window_items(menu);
    add_frontmost_items(menu);
    menu.push_back(vnMenuItem::Separator());
    menu.push_back(item(text("vn_menu_quit_glasspane"), vnMenuAction::quitMessage));
    fInterface.SetStatusMenu(std::move(menu));
}

void vnController::add_window_items(vnMenu& menu) {
    for (const zRecord* application : fAppPopupData.Children()) {
        zRecord windows;
        focus_window().WindowsForApplication(*application, windows);
        if (!windows.HasChildren())
            continue;
        vnMenuItem entry = item(title_of(*application), vnMenuAction::kNone);
        for (const zRecord* window : windows.Children())
            entry.submenu.push_back(item(title_of(*window), vnMenuAction::menuAppWinItemSelected));
        menu.push_back(std::move(entry));
    }
}

void vnController::add_frontmost_items(vnMenu& menu) {
    if (!focus_window().FrontmostApplication(&fStatusAppRecord))
        return;
    focus_window().WindowsForApplication(fStatusAppRecord, fStatusWinList);
    if (!fStatusWinList.HasChildren())
        return;
    menu.push_back(vnMenuItem::Separator());
    zString title(text("vn_menu_present_window"));
    title.ReplaceString("%@", title_of(fStatusAppRecord));
    menu.push_back(item(static_cast<const char*>(title), vnMenuAction::kNone));
    menu.back().enabled = false;
    for (const zRecord* window : fStatusWinList.Children())
        menu.push_back(item(title_of(*window), vnMenuAction::broadcastWindow));
}

void vnController::StatusMenuAction(int index, int subindex) {
    if (!fSnapshotConfig) // A question of the launch is still open.
        return;
    const vnMenu& menu = fInterface.StatusMenu();
    if (index < 0 || static_cast<size_t>(index) >= menu.size())
        return;
    const vnMenuItem& chosen = menu[static_cast<size_t>(index)];
    if (subindex >= 0 && static_cast<size_t>(subindex) < chosen.submenu.size()) {
        // Copies: choosing may have the menu built anew.
        const std::string application = chosen.title;
        const std::string window = chosen.submenu[static_cast<size_t>(subindex)].title;
        menuAppWinItemSelected(application, window);
    } else if (chosen.action == vnMenuAction::showAppWindow) {
        showAppWindow();
    } else if (chosen.action == vnMenuAction::broadcastWindow) {
        broadcastWindow(index);
    } else if (chosen.action == vnMenuAction::quitMessage) {
        quitMessage();
    }
}

/// Of two windows with the same title it is the first one.
void vnController::menuAppWinItemSelected(const std::string& applicationTitle,
                                          const std::string& windowTitle) {
    const zRecord* application = child_by_title(fAppPopupData, applicationTitle);
    if (!application)
        return;
    zRecord windows;
    focus_window().WindowsForApplication(*application, windows);
    const zRecord* window = child_by_title(windows, windowTitle);
    if (!window)
        return;
    focus_window().MakeFrontmost(*application, *window);
    {
        const zAutoCritical lock(fConfigCritical.get());
        focus_on_window(*application, *window);
        fSnapshotConfig->SetCurrentDeviceByIndex(-1);
    }
    _guiFillFromFocusManager();
}

/// Deliberate: unlike a choice from a submenu this leaves windows and device as they are, and the front goes
/// on with that device.
void vnController::broadcastWindow(int itemIndex) {
    // The windows are the last items but two.
    const vnMenu& menu = fInterface.StatusMenu();
    vnLog("%s\n", menu[static_cast<size_t>(itemIndex)].title.c_str());
    const int place = itemIndex + 2 - static_cast<int>(menu.size()) + fStatusWinList.ChildCount();
    const zRecord* window = place < 0 ? nullptr : fStatusWinList.Child(static_cast<unsigned int>(place));
    if (!window)
        return;
    {
        const zAutoCritical lock(fConfigCritical.get());
        focus_on_window(fStatusAppRecord, *window);
    }
    _guiFillFromFocusManager();
}

/// With the lock held.
void vnController::focus_on_window(const zRecord& application, const zRecord& window) {
    focus_window().FocusOnWindow(application, window);
    fFocusMgr->SetFocus(vnFocusManager::kFocus_Window);
}

/// Positions count: interfaces know the items by them.
void vnController::set_main_menu() {
    vnMenuItem program = item(text("vn_menu_gsp"), vnMenuAction::kNone);
    vnMenuItem driver = item("", vnMenuAction::installAudioDriverMessage);
    driver.tag = kAudioDriverTag;
    validateMenuItem(driver);
    program.submenu = {item(text("vn_menu_about"), vnMenuAction::kAbout),
                       vnMenuItem::Separator(),
                       driver,
                       vnMenuItem::Separator(),
                       item(text("vn_menu_services"), vnMenuAction::kNone),
                       vnMenuItem::Separator(),
                       item(text("vn_menu_hide_glasspane"), vnMenuAction::kHide),
                       item(text("vn_menu_hide_others"), vnMenuAction::kNone),
                       item(text("vn_menu_show_all"), vnMenuAction::kNone),
                       vnMenuItem::Separator(),
                       item(text("vn_menu_quit_glasspane"), vnMenuAction::quitMessage)};
    vnMenuItem file = item(text("vn_menu_file"), vnMenuAction::kNone);
    file.submenu = {item(text("vn_menu_close"), vnMenuAction::kClose)};
    vnMenuItem window = item(text("vn_window"), vnMenuAction::kNone);
    window.submenu = {item(text("vn_menu_minimize"), vnMenuAction::kMinimize),
                      item(text("vn_menu_zoom"), vnMenuAction::kZoom), vnMenuItem::Separator(),
                      item(text("vn_menu_to_front"), vnMenuAction::kToFront)};
    vnMenuItem help = item(text("vn_menu_help"), vnMenuAction::kNone);
    help.submenu = {item(text("vn_menu_glasspane_help"), vnMenuAction::showHelpWindow)};
    fInterface.SetMainMenu({program, file, window, help});
}

void vnController::MainMenuAction(vnMenuAction action) {
    if (action == vnMenuAction::installAudioDriverMessage)
        installAudioDriverMessage();
    else if (action == vnMenuAction::showHelpWindow)
        showHelpWindow();
    else if (action == vnMenuAction::quitMessage)
        quitMessage();
    else if (action == vnMenuAction::kToFront)
        showAppWindow();
}
