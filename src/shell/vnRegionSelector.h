#pragma once

#include <memory>
#include <optional>
#include <string>

#include "vnRegionSelectorView.h"

class vnUserInterface;

/// Hears which region the user chose.
class vnRegionSelectorDelegate {
  public:
    virtual ~vnRegionSelectorDelegate() = default;

    /// \p selection: x in desktop coordinates, y from the display's bottom edge upward; empty if the user
    /// cancelled.
    virtual void selectionComplete(const host::Rect& selection) = 0;
};

/// The region overlay: dims a display and lets the user drag a rectangle on it. Enter confirms, Escape
/// cancels. It fades in and out by a timer of the run loop, half a second each way. Main thread.
class vnRegionSelector {
  public:
    /// \p message is the hint above the selection.
    vnRegionSelector(vnUserInterface& interface, std::string message);
    ~vnRegionSelector();
    vnRegionSelector(const vnRegionSelector&) = delete;
    vnRegionSelector& operator=(const vnRegionSelector&) = delete;

    const char* GetSelectScreenRegionMessage() const { return fSelectScreenRegionMessage.c_str(); }
    /// Not owned; null for nobody.
    void SetDelegate(vnRegionSelectorDelegate* delegate) { _delegate = delegate; }
    /// The place of the display to cover on the desktop; none gives a window without a size.
    void SetScreen(const std::optional<host::Rect>& frame) { _screen = frame; }

    /// What to begin with at the next show; changes what is shown as well. Coordinates as the delegate's.
    void SetSelection(const host::Rect& selection);
    /// What the view has now. Coordinates as the delegate's.
    host::Rect Selection() const;
    bool GetSelectionWasCancelled() const { return fSelectionWasCancelled; }

    void Show();
    void Hide();
    /// Hides, and tells the delegate at once, while the overlay still fades.
    void editingDone(bool cancelled);

    vnRegionSelectorView& View() { return _view; }
    bool IsShown() const { return _overlayWindow != nullptr; }

  private:
    void start_fade(int step);
    void stop_fade();
    void run_animation_step(int step);
    host::Rect frame() const { return _screen.value_or(host::Rect{}); }

    vnUserInterface& fInterface;
    const std::string fSelectScreenRegionMessage;
    std::optional<host::Rect> _screen;
    vnRegionSelectorView _view{*this};
    std::unique_ptr<vnRegionSelectorWindow> _overlayWindow;
    vnRegionSelectorDelegate* _delegate = nullptr;
    host::Rect _selection{};
    bool fIsEditing = false; ///< From the show to the first key that ends it.
    bool fSelectionWasCancelled = false;
    int fFade = 0; ///< The window's opacity, in ticks of a whole fade.
    int fTimer = 0;
};
