#pragma once

#include <functional>
#include <memory>

#include <QMenu>
#include <QSystemTrayIcon>

#include "QtPanel.h"
#include "vnUserInterface.h"

namespace host {

/// The program's face on the screen: the panel's window with the main menu, an item in the desktop's tray
/// where there is one, dialogs, and the overlay. Qt's application object must exist.
class QtUserInterface : public vnUserInterface {
  public:
    /// \p aboutText is what the dialog about the program says.
    explicit QtUserInterface(std::string aboutText);
    ~QtUserInterface() override;

    vnPanel& Panel() override { return fPanel; }
    QtPanel& PanelWindow() { return fPanel; }
    QMenu& StatusItemMenu() { return fStatusItemMenu; }
    /// Whether the desktop shows the status item.
    bool HasStatusItem() const { return fStatusItem.isVisible() && QSystemTrayIcon::isSystemTrayAvailable(); }

    void ShowStatusItem(const std::string& image) override;
    bool RunAlert(const vnAlert& alert) override;
    void ShowPanel() override;
    void Activate() override;
    std::unique_ptr<vnRegionSelectorWindow> NewRegionSelectorWindow(vnRegionSelectorView& view) override;

  protected:
    void MainMenuChanged() override;
    void StatusMenuChanged() override;

  private:
    void add_main_item(QMenu& menu, vnMenuItem& item);
    void validate(QAction& action, vnMenuItem& item);
    void perform(vnMenuAction action);
    void hide_panel();
    void show_about();
    void add_status_item(QMenu& menu, const vnMenuItem& item, int index, int subindex);

    QtPanel fPanel;
    QMenu fStatusItemMenu;
    QSystemTrayIcon fStatusItem;
    const std::string fAboutText;
};

} // namespace host
