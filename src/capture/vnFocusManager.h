#pragma once

#include <cstdint>
#include <memory>

#include "vnFocus.h"
#include "z4CCCC.h"

class vnFocusRect;
class vnFocusWindow;

/// The one focus that the capture front is given: it forwards to a rectangle of a display or to a window, and
/// limits what they say. Callers hold the application's shared lock.
class vnFocusManager : public vnFocus {
  public:
    static constexpr uint32_t kFocus_Rect = z4CCCC("rect");
    static constexpr uint32_t kFocus_Window = z4CCCC("wind");

    vnFocusManager();
    ~vnFocusManager() override;

    /// What the focus in force says, or -1 for an unknown type. Extents above the maximum are cut at the
    /// right and bottom, also those of a rectangle that was only passed in.
    int Rect(zRect& rect) override;

    /// Whether a type can be chosen on this machine.
    bool CanFocusOn(uint32_t type) const;
    /// Stores the type, unchecked.
    void SetFocus(uint32_t type) { fFocusType = type; }
    uint32_t Focused() const { return fFocusType; }

    vnFocusWindow* FocusWindow() const { return fFocusWindow.get(); }
    vnFocusRect* FocusRect() const { return fFocusRect.get(); }

    /// Appends the standard presets, titled in the user's language; the region becomes the current one.
    void InitializeFocusRectPresets();

  private:
    std::unique_ptr<vnFocusWindow> fFocusWindow;
    std::unique_ptr<vnFocusRect> fFocusRect;
    uint32_t fFocusType = kFocus_Rect;
    int fMaximumWidth;
    int fMaximumHeight;
};
