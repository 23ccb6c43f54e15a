#pragma once

#include "Geometry.h"

/// The pointer's shapes over the overlay.
enum class vnCursor {
    kArrow,
    kOpenHand,
    kClosedHand,
    kResizeLeftRight,
    kResizeUpDown,
    kCornerLR, ///< The picture "resizeCursorLR": from the top left to the bottom right.
    kCornerRL  ///< The picture "resizeCursorRL".
};

/// What the overlay is drawn with. All places are the view's: its origin is at the bottom left, y grows
/// upward, units are the desktop's.
class vnCanvas {
  public:
    virtual ~vnCanvas() = default;

    /// Replaces what is there by a grey (0 black, 1 white) of that opacity; with others around it shows.
    virtual void FillRect(const host::Rect& rect, double white, double alpha) = 0;
    /// A dotted line, one unit wide, inside the edges.
    virtual void DrawDottedFrame(const host::Rect& rect) = 0;
    /// A picture of the resources, in its own size, over what is there.
    virtual void DrawImage(const char* name, const host::Point& origin) = 0;
    /// White text in the middle of the rectangle, in lines as wide as it.
    virtual void DrawLabel(const host::Rect& rect, const char* text, double points) = 0;
};

/// The window that covers a display for the overlay: above all others, without a frame, seen through. This
/// class itself is one that nobody sees. Its destruction takes it off the screen. Main thread.
class vnRegionSelectorWindow {
  public:
    vnRegionSelectorWindow() = default;
    virtual ~vnRegionSelectorWindow() = default;
    vnRegionSelectorWindow(const vnRegionSelectorWindow&) = delete;
    vnRegionSelectorWindow& operator=(const vnRegionSelectorWindow&) = delete;

    /// Shows the window over \p frame of the desktop (top left origin) and gives it the keyboard.
    virtual void Open(const host::Rect& /*frame*/) {}
    /// 0 for unseen to 1.
    virtual void SetAlpha(double /*alpha*/) {}
    /// A part of the view, in its coordinates, has to be drawn again.
    virtual void Redraw(const host::Rect& /*area*/) {}
    virtual void SetCursor(vnCursor) {}
};
