#pragma once

#include <memory>
#include <string>

#include "vnMenu.h"
#include "vnPanel.h"
#include "vnRegionSelectorWindow.h"

class vnRegionSelectorView;

/// What a question or a warning to the user says.
struct vnAlert {
    std::string title;
    std::string message;
    std::string defaultButton;
    std::string alternateButton; ///< Empty where there is nothing to choose.
};

/// The face of the program: panel, menus, status item, alerts and the window of the region overlay. This
/// class itself only keeps their state, for a program that nobody looks at; a toolkit's face derives from it.
/// Main thread only.
class vnUserInterface {
  public:
    vnUserInterface() = default;
    virtual ~vnUserInterface() = default;
    vnUserInterface(const vnUserInterface&) = delete;
    vnUserInterface& operator=(const vnUserInterface&) = delete;

    virtual vnPanel& Panel() { return fPanel; }

    /// Who hears the menus, not owned; null for nobody.
    void SetMenuDelegate(vnMenuDelegate* delegate) { fMenuDelegate = delegate; }

    const vnMenu& MainMenu() const { return fMainMenu; }
    void SetMainMenu(vnMenu menu);
    const vnMenu& StatusMenu() const { return fStatusMenu; }
    void SetStatusMenu(vnMenu menu);

    // What the user does. Nothing while there is no delegate.
    void OpenStatusMenu();
    /// An item by its index, or, unless \p subindex is -1, one of its submenu.
    void ChooseFromStatusMenu(int index, int subindex = -1);
    /// The main menu is opened: \p item, which is one of it, tells the present state.
    void ValidateMainMenuItem(vnMenuItem& item);
    void ChooseFromMainMenu(vnMenuAction action);

    /// Shows the status item with the picture of that name.
    virtual void ShowStatusItem(const std::string& /*image*/) {}

    /// Asks or warns, and waits for the answer. True for the default button. Where nobody can answer it's
    /// false, and the title goes to the log.
    virtual bool RunAlert(const vnAlert& alert);

    /// Shows the panel; on top of all other windows, as the one that the user types into.
    virtual void ShowPanel() {}

    /// Brings the program's windows to the front, as far as they are shown.
    virtual void Activate() {}

    /// A window for the overlay, not shown yet; never null. \p view outlives it.
    virtual std::unique_ptr<vnRegionSelectorWindow> NewRegionSelectorWindow(vnRegionSelectorView& view);

    /// Ends the program: its main loop returns.
    virtual void Terminate();

  protected:
    virtual void MainMenuChanged() {}
    virtual void StatusMenuChanged() {}
    vnMenu& main_menu() { return fMainMenu; }

  private:
    vnPanel fPanel;
    vnMenu fMainMenu;
    vnMenu fStatusMenu;
    vnMenuDelegate* fMenuDelegate = nullptr;
};
