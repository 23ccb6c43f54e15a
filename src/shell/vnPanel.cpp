#include "vnPanel.h"

#include <algorithm>

vnPanel::vnPanel() {
    for (const vnControl control :
         {vnControl::windowTextField, vnControl::fWindowPopup, vnControl::widthTitleTextField,
          vnControl::widthTextField, vnControl::heightTitleTextField, vnControl::heightTextField,
          vnControl::selectRegionButton, vnControl::captureVideoLabel})
        state(control).hidden = true;
    state(vnControl::captureVideo).on = true;
    state(vnControl::captureAudio).on = true;
}

template <typename T>
void vnPanel::set(vnControl control, T vnControlState::*member, const T& value) {
    T& present = state(control).*member;
    if (present == value)
        return;
    present = value;
    Changed(control);
}

void vnPanel::SetText(vnControl control, const std::string& text) {
    set(control, &vnControlState::text, text);
}

void vnPanel::SetHidden(vnControl control, bool hidden) {
    set(control, &vnControlState::hidden, hidden);
}

void vnPanel::SetEnabled(vnControl control, bool enabled) {
    set(control, &vnControlState::enabled, enabled);
}

void vnPanel::SetOn(vnControl control, bool on) {
    set(control, &vnControlState::on, on);
}

void vnPanel::RemoveAllItems(vnControl popup) {
    state(popup).items.clear();
    state(popup).selected = -1;
    Changed(popup);
}

void vnPanel::AddItem(vnControl popup, const std::string& title) {
    state(popup).items.push_back({title, false});
    if (state(popup).items.size() == 1)
        state(popup).selected = 0;
    Changed(popup);
}

void vnPanel::AddSeparator(vnControl popup) {
    state(popup).items.push_back({"", true});
    Changed(popup);
}

void vnPanel::SelectItem(vnControl popup, int index) {
    const auto& items = State(popup).items;
    const bool exists = index >= 0 && static_cast<size_t>(index) < items.size() &&
                        !items[static_cast<size_t>(index)].isSeparator;
    set(popup, &vnControlState::selected, exists ? index : -1);
}

void vnPanel::SelectItemWithTitle(vnControl popup, const std::string& title) {
    const auto& items = State(popup).items;
    const auto found = std::find_if(items.begin(), items.end(), [&](const vnControlState::Item& item) {
        return !item.isSeparator && item.title == title;
    });
    SelectItem(popup, found == items.end() ? -1 : static_cast<int>(found - items.begin()));
}

void vnPanel::Resize(int points) {
    fExtraHeight += points;
    Resized(points);
}

void vnPanel::Press(vnControl button) {
    if (can_use(button))
        act(button);
}

void vnPanel::Switch(vnControl checkBox) {
    if (!can_use(checkBox))
        return;
    SetOn(checkBox, !State(checkBox).on);
    act(checkBox);
}

void vnPanel::Choose(vnControl popup, int index) {
    if (!can_use(popup))
        return;
    SelectItem(popup, index);
    act(popup);
}

void vnPanel::Type(vnControl textField, const std::string& text) {
    if (!can_use(textField))
        return;
    SetText(textField, text);
    act(textField);
}

bool vnPanel::can_use(vnControl control) const {
    return State(control).enabled && !State(control).hidden;
}

void vnPanel::act(vnControl control) {
    if (fDelegate)
        fDelegate->PanelAction(control);
}
