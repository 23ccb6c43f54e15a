#include "QtPanel.h"

#include <algorithm>
#include <utility>

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QFrame>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QStandardItemModel>
#include <QTimer>
#include <QVBoxLayout>

#include "QtPanelRow.h"
#include "QtText.h"

namespace host {

namespace {

constexpr int kMargin = 16;
constexpr int kPopupLetters = 26; // The least width of a popup.
constexpr int kFieldDigits = 6;   // The width of a size field.
constexpr int kLargestExtent = 99999;

constexpr const char* kNames[] = {"sourceTextField",     "fDevicePopup",       "selectTextField",
                                  "fSelectPopup",        "windowTextField",    "fWindowPopup",
                                  "widthTitleTextField", "widthTextField",     "heightTitleTextField",
                                  "heightTextField",     "selectRegionButton", "addrTextField",
                                  "muteButton",          "captureVideo",       "captureVideoLabel",
                                  "captureVideoDivider", "captureAudio",       "captureAudioDivider"};
static_assert(std::size(kNames) == static_cast<size_t>(vnControl::kCount));

/// What stands at the left of the rows, in one column.
constexpr vnControl kRowLabels[] = {vnControl::sourceTextField, vnControl::selectTextField,
                                    vnControl::windowTextField, vnControl::widthTitleTextField};

/// Takes sizes; a field that was emptied gets back what is in force.
class SizeValidator : public QIntValidator {
  public:
    SizeValidator(const vnPanel& panel, vnControl control, QObject* parent)
        : QIntValidator(0, kLargestExtent, parent), fPanel(panel), fControl(control) {}

    void fixup(QString& input) const override { input = QtText::FromUtf8(fPanel.State(fControl).text); }

  private:
    const vnPanel& fPanel;
    const vnControl fControl;
};

} // namespace

/// Closing it is left to the program.
class QtPanel::PanelWindow : public QMainWindow {
  public:
    std::function<void()> onClose;

  protected:
    void closeEvent(QCloseEvent* event) override {
        event->accept();
        if (onClose)
            onClose();
    }
};

QtPanel::QtPanel() : fWindow(std::make_unique<PanelWindow>()) {
    fWindow->setObjectName("panel");
    fWindow->setWindowTitle("Glasspane");
    build();
    for (size_t i = 0; i < fWidgets.size(); ++i)
        update_widget(static_cast<vnControl>(i));
}

QtPanel::~QtPanel() = default;

QMainWindow& QtPanel::Window() {
    return *fWindow;
}

void QtPanel::SetOnClose(std::function<void()> onClose) {
    fWindow->onClose = std::move(onClose);
}

template <typename Widget>
Widget* QtPanel::add(vnControl control, Widget* widget) {
    widget->setObjectName(kNames[static_cast<size_t>(control)]);
    fWidgets[static_cast<size_t>(control)] = widget;
    return widget;
}

QLabel* QtPanel::add_label(vnControl control) {
    auto* label = add(control, new QLabel);
    label->setTextFormat(Qt::PlainText);
    return label;
}

QComboBox* QtPanel::add_popup(vnControl control, vnControl label) {
    auto* popup = add(control, new QComboBox);
    popup->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    popup->setMinimumContentsLength(kPopupLetters);
    popup->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    static_cast<QLabel*>(widget(label))->setBuddy(popup);
    QObject::connect(popup, &QComboBox::activated, popup,
                     [this, control](int index) { Choose(control, index); });
    return popup;
}

QLineEdit* QtPanel::add_field(vnControl control, vnControl label) {
    auto* field = add(control, new QLineEdit);
    field->setValidator(new SizeValidator(*this, control, field));
    field->setMaximumWidth(field->fontMetrics().averageCharWidth() * (kFieldDigits + 4));
    static_cast<QLabel*>(widget(label))->setBuddy(field);
    QObject::connect(field, &QLineEdit::editingFinished, field, [this, control, field] {
        const std::string typed = field->text().toStdString();
        if (typed != State(control).text)
            Type(control, typed);
    });
    return field;
}

QPushButton* QtPanel::add_button(vnControl control) {
    auto* button = add(control, new QPushButton);
    QObject::connect(button, &QPushButton::clicked, button, [this, control] { Press(control); });
    return button;
}

QCheckBox* QtPanel::add_check_box(vnControl control) {
    auto* box = add(control, new QCheckBox);
    QObject::connect(box, &QCheckBox::clicked, box, [this, control] { Switch(control); });
    return box;
}

QWidget* QtPanel::add_divider(vnControl control) {
    auto* line = add(control, new QFrame);
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    line->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    return line;
}

/// A null stands for the space that is left.
void QtPanel::add_row(vnControl first, std::initializer_list<QWidget*> widgets) {
    auto* row = new QtPanelRow(fWindow->centralWidget());
    for (QWidget* widget : widgets) {
        if (widget)
            row->Line().addWidget(widget);
        else
            row->Line().addStretch(1);
    }
    fWindow->centralWidget()->layout()->addWidget(row);
    row->Finish();
    fRows.emplace(first, row);
}

void QtPanel::build() {
    using enum vnControl;
    fWindow->setCentralWidget(new QWidget);
    auto* column = new QVBoxLayout(fWindow->centralWidget());
    column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    column->setSpacing(0);
    // The window always fits its rows: it grows and shrinks with them, and its top edge stays.
    column->setSizeConstraint(QLayout::SetFixedSize);
    fWindow->layout()->setSizeConstraint(QLayout::SetFixedSize);

    // Labels first: popups and fields refer to theirs.
    for (const vnControl label : {sourceTextField, selectTextField, windowTextField, widthTitleTextField,
                                  heightTitleTextField, captureVideoLabel, addrTextField})
        add_label(label);
    static_cast<QLabel*>(widget(addrTextField))
        ->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);

    add_row(sourceTextField, {widget(sourceTextField), add_popup(fDevicePopup, sourceTextField)});
    add_row(selectTextField, {widget(selectTextField), add_popup(fSelectPopup, selectTextField)});
    add_row(windowTextField, {widget(windowTextField), add_popup(fWindowPopup, windowTextField)});
    add_row(widthTitleTextField,
            {widget(widthTitleTextField), add_field(widthTextField, widthTitleTextField),
             widget(heightTitleTextField), add_field(heightTextField, heightTitleTextField), nullptr});
    add_row(selectRegionButton, {nullptr, add_button(selectRegionButton)});
    add_row(captureVideoLabel,
            {add_check_box(captureVideo), widget(captureVideoLabel), add_divider(captureVideoDivider)});
    add_row(captureAudio, {add_check_box(captureAudio), add_divider(captureAudioDivider)});
    add_row(addrTextField, {widget(addrTextField), nullptr, add_button(muteButton)});
}

void QtPanel::Changed(vnControl control) {
    fStale.set(static_cast<size_t>(control));
    if (std::exchange(fIsRefreshPending, true))
        return;
    QTimer::singleShot(0, fWindow.get(), [this] { Refresh(); });
}

void QtPanel::Refresh() {
    fIsRefreshPending = false;
    const auto stale = std::exchange(fStale, {});
    for (size_t i = 0; i < fWidgets.size(); ++i) {
        if (stale[i])
            update_widget(static_cast<vnControl>(i));
    }
    align_labels();
}

void QtPanel::update_widget(vnControl control) {
    const vnControlState& state = State(control);
    QWidget* shown = widget(control);
    shown->setEnabled(state.enabled);
    if (auto* label = qobject_cast<QLabel*>(shown)) {
        label->setText(QtText::FromUtf8(state.text));
        if (label->buddy())
            label->buddy()->setAccessibleName(label->text().remove(':').trimmed());
    } else if (auto* popup = qobject_cast<QComboBox*>(shown)) {
        update_popup(*popup, state);
    } else if (auto* field = qobject_cast<QLineEdit*>(shown)) {
        field->setText(QtText::FromUtf8(state.text));
    } else if (auto* button = qobject_cast<QAbstractButton*>(shown)) {
        button->setText(QtText::Label(state.text));
        button->setChecked(state.on);
    }
    const auto row = fRows.find(control);
    if (row != fRows.end() && control != vnControl::captureVideoLabel)
        row->second->SetShown(!state.hidden);
    shown->setVisible(!state.hidden);
}

void QtPanel::update_popup(QComboBox& popup, const vnControlState& state) {
    const QSignalBlocker quiet(popup);
    popup.clear();
    for (const vnControlState::Item& item : state.items) {
        if (item.isSeparator)
            popup.insertSeparator(popup.count());
        else
            popup.addItem(QtText::FromUtf8(item.title));
    }
    popup.setCurrentIndex(state.selected);
}

/// The labels of the rows share a column as wide as the widest of them, so that the popups line up.
void QtPanel::align_labels() {
    int width = 0;
    for (const vnControl label : kRowLabels)
        width = std::max(width, widget(label)->sizeHint().width());
    for (const vnControl label : kRowLabels)
        widget(label)->setFixedWidth(width);
    const bool isRightToLeft = QtText::FromUtf8(State(vnControl::sourceTextField).text).isRightToLeft();
    fWindow->setLayoutDirection(isRightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
}

} // namespace host
