#pragma once

#include "vnRegionSelectorWindow.h"

class vnRegionSelector;

/// The content of the overlay: a clear rectangle in a dimmed display, with eight knobs to change it by. It
/// knows all geometry and nothing of a toolkit. Coordinates are the view's: the origin is at the bottom left,
/// y grows upward. Main thread.
class vnRegionSelectorView {
  public:
    // The handles, in the order in which they are hit.
    static constexpr int kNoCorner = 0;
    static constexpr int kLeft = 1;
    static constexpr int kRight = 2;
    static constexpr int kTop = 3;
    static constexpr int kBottom = 4;
    static constexpr int kTopLeft = 5;
    static constexpr int kTopRight = 6;
    static constexpr int kBottomLeft = 7;
    static constexpr int kBottomRight = 8;
    static constexpr int kCornerCount = 8;

    /// \p parent hears the keys and has the hint's text; it outlives the view.
    explicit vnRegionSelectorView(vnRegionSelector& parent) : _parent(parent) {}
    vnRegionSelectorView(const vnRegionSelectorView&) = delete;
    vnRegionSelectorView& operator=(const vnRegionSelectorView&) = delete;

    /// For a new showing: ends what the mouse was about.
    void SetSize(double width, double height);
    /// The window that shows the view, not owned; null while there is none.
    void SetWindow(vnRegionSelectorWindow* window) { fWindow = window; }
    bool IsInWindow() const { return fWindow != nullptr; }

    const host::Rect& Selection() const { return fSelection; }
    void SetSelection(const host::Rect& selection);

    /// Where the hint stands: above the selection, even beyond the top of the display.
    const host::Rect& InfoBox() const { return fInfoBox; }

    void Draw(vnCanvas& canvas) const;

    void MouseMoved(const host::Point& point);
    void MouseDown(const host::Point& point);
    void MouseDragged(const host::Point& point);
    void MouseUp();
    /// A key by its first character. False for one that means nothing here.
    bool KeyDown(int character);
    /// Escape.
    void CancelOperation();

    /// The rectangle in which a handle is hit and drawn; at the origin for any other number.
    host::Rect RectForCorner(int corner) const;
    int SelectedCorner() const { return _selectedCorner; }

  private:
    int edge_for_point(const host::Point& point) const;
    vnCursor cursor_for_point(const host::Point& point) const;
    void set_selected_corner(int corner);
    host::Rect dragged_to(const host::Point& point) const;
    void limit(host::Rect& selection) const;
    void redraw(const host::Rect& area) const;
    void set_cursor(vnCursor cursor) const;

    vnRegionSelector& _parent;
    vnRegionSelectorWindow* fWindow = nullptr;
    host::Rect fBounds{0, 0, 100, 100};
    host::Rect fSelection{};
    host::Rect fInfoBox{0, 0, 330, 60};
    int _selectedCorner = kNoCorner;

    // A drag, from its MouseDown to its MouseUp.
    bool fIsDragging = false;
    int fDragCorner = kNoCorner;
    host::Point fDragStart{};
    host::Rect fDragSelection{};
};
