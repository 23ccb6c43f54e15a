#pragma once

#include <string>
#include <vector>

/// What an item of a menu does.
enum class vnMenuAction {
    kNone,
    showAppWindow,
    showHelpWindow,
    quitMessage,
    menuAppWinItemSelected,
    broadcastWindow,
    installAudioDriverMessage,
    // The interface's own: the program has no part in them.
    kAbout,
    kHide,
    kClose,
    kMinimize,
    kZoom,
    kToFront
};

/// An item of a menu, with the submenu that it opens where it has one.
struct vnMenuItem {
    std::string title;
    vnMenuAction action = vnMenuAction::kNone;
    int tag = 0;
    bool enabled = true;
    bool isSeparator = false;
    std::vector<vnMenuItem> submenu;

    static vnMenuItem Separator() {
        vnMenuItem item;
        item.isSeparator = true;
        return item;
    }
};

using vnMenu = std::vector<vnMenuItem>;

/// Hears the user of the main menu and of the status menu. Main thread.
class vnMenuDelegate {
  public:
    virtual ~vnMenuDelegate() = default;

    /// The main menu is about to be shown: what an item says and whether it can be chosen may have changed.
    virtual void validateMenuItem(vnMenuItem& item) = 0;
    /// The status menu is about to be shown: it is built anew.
    virtual void menuNeedsUpdate() = 0;

    /// The user chose an item of the main menu.
    virtual void MainMenuAction(vnMenuAction action) = 0;
    /// The user chose the item at \p index of the status menu, or, unless \p subindex is -1, an item of its
    /// submenu. Nothing for one that isn't there or can't be chosen.
    virtual void StatusMenuAction(int index, int subindex) = 0;
};
