#pragma once

#include <array>
#include <bitset>
#include <functional>
#include <map>
#include <memory>

#include <QMainWindow>

#include "vnPanel.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace host {

class QtPanelRow;

/// The panel on the screen: a window that mirrors the state of vnPanel. Rows of controls slide in and out
/// below a top edge that stays where it is. Each widget's object name is its control's.
class QtPanel : public vnPanel {
  public:
    QtPanel();
    ~QtPanel() override;

    QMainWindow& Window();
    /// Brings the widgets up to date at once; changes otherwise wait for the loop's next round.
    void Refresh();
    /// Called when the user closes the window.
    void SetOnClose(std::function<void()> onClose);

  protected:
    void Changed(vnControl control) override;

  private:
    class PanelWindow;

    template <typename Widget>
    Widget* add(vnControl control, Widget* widget);
    QLabel* add_label(vnControl control);
    QComboBox* add_popup(vnControl control, vnControl label);
    QLineEdit* add_field(vnControl control, vnControl label);
    QPushButton* add_button(vnControl control);
    QCheckBox* add_check_box(vnControl control);
    QWidget* add_divider(vnControl control);
    void add_row(vnControl first, std::initializer_list<QWidget*> widgets);
    void build();

    QWidget* widget(vnControl control) const { return fWidgets[static_cast<size_t>(control)]; }
    void update_widget(vnControl control);
    void update_popup(QComboBox& popup, const vnControlState& state);
    void align_labels();

    std::unique_ptr<PanelWindow> fWindow;
    std::array<QWidget*, static_cast<size_t>(vnControl::kCount)> fWidgets{}; ///< The window's.
    std::map<vnControl, QtPanelRow*> fRows;                                  ///< By their first control.
    std::bitset<static_cast<size_t>(vnControl::kCount)> fStale;
    bool fIsRefreshPending = false;
};

} // namespace host
