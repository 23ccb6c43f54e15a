#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

/// The controls of the panel.
enum class vnControl {
    sourceTextField,
    fDevicePopup,
    selectTextField,
    fSelectPopup,
    windowTextField,
    fWindowPopup,
    widthTitleTextField,
    widthTextField,
    heightTitleTextField,
    heightTextField,
    selectRegionButton,
    addrTextField,
    muteButton,
    captureVideo,
    captureVideoLabel,
    captureVideoDivider,
    captureAudio,
    captureAudioDivider,
    kCount
};

/// What one control shows. Popups have items, check boxes are on or off, everything else has its text.
struct vnControlState {
    struct Item {
        std::string title;
        bool isSeparator = false;
    };

    std::string text; ///< Not of popups.
    bool hidden = false;
    bool enabled = true;
    bool on = false;
    std::vector<Item> items;
    int selected = -1; ///< Index among all items, separators counted; -1 for none.
};

/// Hears what the user did to the panel.
class vnPanelDelegate {
  public:
    virtual ~vnPanelDelegate() = default;

    /// The user pressed, switched, chose from or typed into \p control, whose state is the new one.
    virtual void PanelAction(vnControl control) = 0;
};

/// The panel as the program knows it: the state of each control, and nothing of a toolkit. A program without
/// a screen uses it as it is; one with a screen derives a class that mirrors the changes. Main thread only.
class vnPanel {
  public:
    /// As the panel is before the launch fills it: for a source that has nothing to set, all captured.
    vnPanel();
    virtual ~vnPanel() = default;
    vnPanel(const vnPanel&) = delete;
    vnPanel& operator=(const vnPanel&) = delete;

    const vnControlState& State(vnControl control) const { return fStates[static_cast<size_t>(control)]; }

    void SetText(vnControl control, const std::string& text);
    void SetHidden(vnControl control, bool hidden);
    void SetEnabled(vnControl control, bool enabled);
    void SetOn(vnControl control, bool on);

    void RemoveAllItems(vnControl popup);
    /// The first item becomes the selected one.
    void AddItem(vnControl popup, const std::string& title);
    void AddSeparator(vnControl popup);
    /// None for an index without an item that can be chosen.
    void SelectItem(vnControl popup, int index);
    /// The first one of that title, none where there is none.
    void SelectItemWithTitle(vnControl popup, const std::string& title);

    /// Makes the panel higher by so many points, lower for a negative number, with its top edge where it is.
    void Resize(int points);
    /// All that Resize has added.
    int ExtraHeight() const { return fExtraHeight; }

    /// Who hears the user, not owned; null for nobody.
    void SetDelegate(vnPanelDelegate* delegate) { fDelegate = delegate; }

    // What the user does: the state changes, and the delegate hears of it. Nothing while the control is
    // hidden or disabled.
    void Press(vnControl button);
    void Switch(vnControl checkBox);
    void Choose(vnControl popup, int index);
    void Type(vnControl textField, const std::string& text);

  protected:
    /// A control's state is another one now.
    virtual void Changed(vnControl) {}
    virtual void Resized(int /*points*/) {}

  private:
    vnControlState& state(vnControl control) { return fStates[static_cast<size_t>(control)]; }
    bool can_use(vnControl control) const;
    void act(vnControl control);
    template <typename T>
    void set(vnControl control, T vnControlState::*member, const T& value);

    std::array<vnControlState, static_cast<size_t>(vnControl::kCount)> fStates;
    int fExtraHeight = 0;
    vnPanelDelegate* fDelegate = nullptr;
};
