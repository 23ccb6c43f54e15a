#include "QtUserInterface.h"

#include <utility>

#include <QAction>
#include <QApplication>
#include <QIcon>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>

#include "Host.h"
#include "QtRegionWindow.h"
#include "QtText.h"

namespace host {

namespace {

QIcon icon_from(const std::string& name) {
    return QIcon(QtText::FromUtf8(Host::Current().DesktopPort().ResourcePath("images/" + name)));
}

QKeySequence shortcut_of(vnMenuAction action) {
    switch (action) {
    case vnMenuAction::quitMessage:
        return QKeySequence::Quit;
    case vnMenuAction::kClose:
        return QKeySequence::Close;
    case vnMenuAction::kMinimize:
        return QKeySequence("Ctrl+M");
    case vnMenuAction::kHide:
        return QKeySequence("Ctrl+H");
    case vnMenuAction::showHelpWindow:
        return QKeySequence::HelpContents;
    default:
        return {};
    }
}

/// The items of other desktops do nothing here, and the panel's window has just one size.
bool is_of_this_desktop(const vnMenuItem& item) {
    return item.isSeparator || (item.action != vnMenuAction::kNone && item.action != vnMenuAction::kZoom);
}

/// Items and submenus; those that are being used right now live on until then.
void empty_menu(QWidget& menu) {
    for (QMenu* submenu : menu.findChildren<QMenu*>(Qt::FindDirectChildrenOnly))
        submenu->deleteLater();
    for (QAction* action : menu.actions()) {
        menu.removeAction(action);
        action->deleteLater();
    }
}

} // namespace

QtUserInterface::QtUserInterface(std::string aboutText) : fAboutText(std::move(aboutText)) {
    QApplication::setWindowIcon(icon_from("glasspane.png"));
    fPanel.SetOnClose([this] { Terminate(); });
    QObject::connect(&fStatusItemMenu, &QMenu::aboutToShow, &fStatusItemMenu, [this] { OpenStatusMenu(); });
    QObject::connect(&fStatusItem, &QSystemTrayIcon::activated, &fStatusItem,
                     [this](QSystemTrayIcon::ActivationReason reason) {
                         if (reason == QSystemTrayIcon::Trigger)
                             ShowPanel();
                     });
    fStatusItem.setContextMenu(&fStatusItemMenu);
}

QtUserInterface::~QtUserInterface() = default;

void QtUserInterface::ShowStatusItem(const std::string& image) {
    fStatusItem.setIcon(icon_from(image));
    fStatusItem.setToolTip("Glasspane");
    fStatusItem.show();
}

void QtUserInterface::ShowPanel() {
    QMainWindow& window = fPanel.Window();
    fPanel.Refresh();
    if (window.isMinimized())
        window.showNormal();
    window.show();
    window.raise();
    window.activateWindow();
}

void QtUserInterface::Activate() {
    QMainWindow& window = fPanel.Window();
    if (!window.isVisible() || window.isMinimized())
        return;
    window.raise();
    window.activateWindow();
}

bool QtUserInterface::RunAlert(const vnAlert& alert) {
    QWidget* parent = fPanel.Window().isVisible() ? &fPanel.Window() : nullptr;
    QMessageBox box(alert.alternateButton.empty() ? QMessageBox::Warning : QMessageBox::Question, "Glasspane",
                    QtText::FromUtf8(alert.title), QMessageBox::NoButton, parent);
    box.setTextFormat(Qt::PlainText);
    box.setInformativeText(QtText::FromUtf8(alert.message));
    QPushButton* yes = box.addButton(QtText::Label(alert.defaultButton), QMessageBox::AcceptRole);
    box.setDefaultButton(yes);
    if (!alert.alternateButton.empty())
        box.setEscapeButton(box.addButton(QtText::Label(alert.alternateButton), QMessageBox::RejectRole));
    box.exec();
    return box.clickedButton() == yes;
}

std::unique_ptr<vnRegionSelectorWindow> QtUserInterface::NewRegionSelectorWindow(vnRegionSelectorView& view) {
    return std::make_unique<QtRegionWindow>(view);
}

void QtUserInterface::MainMenuChanged() {
    QMenuBar& bar = *fPanel.Window().menuBar();
    empty_menu(bar);
    for (vnMenuItem& item : main_menu()) {
        QMenu* menu = bar.addMenu(QtText::Label(item.title));
        for (vnMenuItem& entry : item.submenu)
            add_main_item(*menu, entry);
    }
}

void QtUserInterface::add_main_item(QMenu& menu, vnMenuItem& item) {
    if (item.isSeparator) {
        menu.addSeparator();
        return;
    }
    QAction* action = menu.addAction(QtText::Label(item.title));
    action->setShortcut(shortcut_of(item.action));
    action->setVisible(is_of_this_desktop(item));
    if (item.action == vnMenuAction::quitMessage)
        action->setMenuRole(QAction::QuitRole);
    QObject::connect(action, &QAction::triggered, action, [this, kind = item.action] { perform(kind); });
    QObject::connect(&menu, &QMenu::aboutToShow, action, [this, action, &item] { validate(*action, item); });
    validate(*action, item);
}

void QtUserInterface::validate(QAction& action, vnMenuItem& item) {
    ValidateMainMenuItem(item);
    action.setText(QtText::Label(item.title));
    action.setEnabled(item.enabled);
}

void QtUserInterface::perform(vnMenuAction action) {
    switch (action) {
    case vnMenuAction::kAbout:
        return show_about();
    case vnMenuAction::kHide:
        return hide_panel();
    case vnMenuAction::kClose:
        fPanel.Window().close();
        return;
    case vnMenuAction::kMinimize:
        return fPanel.Window().showMinimized();
    default:
        ChooseFromMainMenu(action);
    }
}

/// Into the tray, from where the user can bring it back; without one it stays in the list of windows.
void QtUserInterface::hide_panel() {
    if (HasStatusItem())
        fPanel.Window().hide();
    else
        fPanel.Window().showMinimized();
}

void QtUserInterface::show_about() {
    QMessageBox box(QMessageBox::NoIcon, "Glasspane", QtText::FromUtf8(fAboutText), QMessageBox::Ok,
                    &fPanel.Window());
    box.setIconPixmap(fPanel.Window().windowIcon().pixmap(64));
    box.exec();
}

void QtUserInterface::StatusMenuChanged() {
    empty_menu(fStatusItemMenu);
    for (int index = 0; const vnMenuItem& item : StatusMenu()) {
        if (item.isSeparator) {
            fStatusItemMenu.addSeparator();
        } else if (item.submenu.empty()) {
            add_status_item(fStatusItemMenu, item, index, -1);
        } else {
            QMenu* submenu = fStatusItemMenu.addMenu(QtText::Label(item.title));
            for (int subindex = 0; const vnMenuItem& entry : item.submenu)
                add_status_item(*submenu, entry, index, subindex++);
        }
        ++index;
    }
}

void QtUserInterface::add_status_item(QMenu& menu, const vnMenuItem& item, int index, int subindex) {
    QAction* action = menu.addAction(QtText::Label(item.title));
    action->setEnabled(item.enabled);
    QObject::connect(action, &QAction::triggered, action,
                     [this, index, subindex] { ChooseFromStatusMenu(index, subindex); });
}

} // namespace host
