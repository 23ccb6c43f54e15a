#include "vnRegionSelectorView.h"

#include <algorithm>

#include "vnLog.h"
#include "vnRegionSelector.h"

namespace {

constexpr double kHitSize = 14;       // Of a handle, each way.
constexpr double kLeastExtent = 24;   // Of a selection, each way.
constexpr double kInfoBoxMargin = 20; // From the selection's top edge to the hint.
constexpr double kRedrawMargin = 16;  // Of a selection, for the knobs on its edges.
constexpr double kLabelMargin = 10;   // From the hint's box to its text.
constexpr double kLabelPoints = 13;
constexpr int kEnter = 3;
constexpr int kReturn = 13;

bool contains(const host::Rect& rect, const host::Point& point) {
    return point.x >= rect.x && point.x < rect.x + rect.width && point.y >= rect.y &&
           point.y < rect.y + rect.height;
}

host::Rect grown(const host::Rect& rect, double margin) {
    return {rect.x - margin, rect.y - margin, rect.width + 2 * margin, rect.height + 2 * margin};
}

host::Rect united(const host::Rect& a, const host::Rect& b) {
    const double x = std::min(a.x, b.x);
    const double y = std::min(a.y, b.y);
    return {x, y, std::max(a.x + a.width, b.x + b.width) - x, std::max(a.y + a.height, b.y + b.height) - y};
}

} // namespace

void vnRegionSelectorView::SetSize(double width, double height) {
    fBounds = {0, 0, width, height};
    fIsDragging = false;
    _selectedCorner = kNoCorner;
}

void vnRegionSelectorView::SetSelection(const host::Rect& selection) {
    if (selection == fSelection)
        return;
    const host::Rect oldInfoBox = fInfoBox;
    redraw(united(grown(fSelection, kRedrawMargin), grown(selection, kRedrawMargin)));
    fSelection = selection;
    fInfoBox.x = selection.x + selection.width / 2 - fInfoBox.width / 2;
    fInfoBox.y = selection.y + selection.height + kInfoBoxMargin;
    redraw(united(oldInfoBox, fInfoBox));
}

void vnRegionSelectorView::Draw(vnCanvas& canvas) const {
    const host::Rect& s = fSelection;
    const double right = s.x + s.width;
    const double top = s.y + s.height;
    canvas.FillRect(s, 1, 0.1);
    for (const host::Rect& around :
         {host::Rect{0, 0, fBounds.width, s.y}, host::Rect{0, top, fBounds.width, fBounds.height - top},
          host::Rect{0, s.y, s.x, s.height}, host::Rect{right, s.y, fBounds.width - right, s.height}})
        canvas.FillRect(around, 0, 0.7);
    canvas.DrawDottedFrame(s);
    for (int corner = 1; corner <= kCornerCount; ++corner) {
        const host::Rect knob = RectForCorner(corner);
        canvas.DrawImage(corner == _selectedCorner ? "knobDown" : "knob", {knob.x, knob.y});
    }
    canvas.FillRect(fInfoBox, 0, 1);
    canvas.DrawLabel(grown(fInfoBox, -kLabelMargin), _parent.GetSelectScreenRegionMessage(), kLabelPoints);
}

host::Rect vnRegionSelectorView::RectForCorner(int corner) const {
    const double left = fSelection.x;
    const double middle = fSelection.x + fSelection.width / 2;
    const double right = fSelection.x + fSelection.width;
    const double bottom = fSelection.y;
    const double centre = fSelection.y + fSelection.height / 2;
    const double top = fSelection.y + fSelection.height;
    const host::Point points[kCornerCount + 1] = {{0, 0},        {left, centre},   {right, centre},
                                                  {middle, top}, {middle, bottom}, {left, top},
                                                  {right, top},  {left, bottom},   {right, bottom}};
    const host::Point& point = points[corner >= 1 && corner <= kCornerCount ? corner : 0];
    return {point.x - kHitSize / 2, point.y - kHitSize / 2, kHitSize, kHitSize};
}

int vnRegionSelectorView::edge_for_point(const host::Point& point) const {
    for (int corner = 1; corner <= kCornerCount; ++corner) {
        if (contains(RectForCorner(corner), point))
            return corner;
    }
    return kNoCorner;
}

vnCursor vnRegionSelectorView::cursor_for_point(const host::Point& point) const {
    static constexpr struct {
        int corner;
        vnCursor cursor;
    } kCursors[] = {
        {kLeft, vnCursor::kResizeLeftRight}, {kRight, vnCursor::kResizeLeftRight},
        {kTop, vnCursor::kResizeUpDown},     {kBottom, vnCursor::kResizeUpDown},
        {kTopLeft, vnCursor::kCornerLR},     {kBottomRight, vnCursor::kCornerLR},
        {kTopRight, vnCursor::kCornerRL},    {kBottomLeft, vnCursor::kCornerRL},
    };
    for (const auto& entry : kCursors) {
        if (contains(RectForCorner(entry.corner), point))
            return entry.cursor;
    }
    return contains(fSelection, point) ? vnCursor::kOpenHand : vnCursor::kArrow;
}

void vnRegionSelectorView::set_selected_corner(int corner) {
    if (corner == _selectedCorner)
        return;
    redraw(RectForCorner(_selectedCorner));
    _selectedCorner = corner;
    redraw(RectForCorner(_selectedCorner));
}

void vnRegionSelectorView::MouseMoved(const host::Point& point) {
    set_selected_corner(edge_for_point(point));
    set_cursor(cursor_for_point(point));
}

void vnRegionSelectorView::MouseDown(const host::Point& point) {
    const int corner = edge_for_point(point);
    if (corner == kNoCorner && !contains(fSelection, point))
        return;
    fIsDragging = true;
    fDragCorner = corner;
    fDragStart = point;
    fDragSelection = fSelection;
    if (corner == kNoCorner)
        set_cursor(vnCursor::kClosedHand);
}

void vnRegionSelectorView::MouseDragged(const host::Point& point) {
    if (fIsDragging)
        SetSelection(dragged_to(point));
}

void vnRegionSelectorView::MouseUp() {
    if (!fIsDragging)
        return;
    fIsDragging = false;
    if (fDragCorner == kNoCorner)
        set_cursor(vnCursor::kOpenHand);
}

/// The selection of the drag's start, changed by how far the pointer has come since.
host::Rect vnRegionSelectorView::dragged_to(const host::Point& point) const {
    const double dx = point.x - fDragStart.x;
    const double dy = point.y - fDragStart.y;
    host::Rect selection = fDragSelection;
    const auto moves = [this](int a, int b, int c) {
        return fDragCorner == a || fDragCorner == b || fDragCorner == c;
    };
    if (fDragCorner == kNoCorner) {
        selection.x += dx;
        selection.y += dy;
    }
    if (moves(kLeft, kTopLeft, kBottomLeft)) {
        selection.x += dx;
        selection.width -= dx;
    }
    if (moves(kRight, kTopRight, kBottomRight))
        selection.width += dx;
    if (moves(kTop, kTopLeft, kTopRight))
        selection.height += dy;
    if (moves(kBottom, kBottomLeft, kBottomRight)) {
        selection.y += dy;
        selection.height -= dy;
    }
    limit(selection);
    return selection;
}

/// Deliberate: the least extent does not correct the origin, so that a left edge dragged past it pushes the
/// whole selection along.
void vnRegionSelectorView::limit(host::Rect& selection) const {
    selection.width = std::max(selection.width, kLeastExtent);
    selection.height = std::max(selection.height, kLeastExtent);
    selection.x = std::max(selection.x, fBounds.x);
    selection.y = std::max(selection.y, fBounds.y);
    if (selection.x + selection.width > fBounds.x + fBounds.width)
        selection.x = fBounds.x + fBounds.width - selection.width;
    if (selection.y + selection.height > fBounds.y + fBounds.height)
        selection.y = fBounds.y + fBounds.height - selection.height;
}

bool vnRegionSelectorView::KeyDown(int character) {
    vnLog("Key: %ld\n", static_cast<long>(character));
    if (character != kEnter && character != kReturn)
        return false;
    _parent.editingDone(false);
    return true;
}

void vnRegionSelectorView::CancelOperation() {
    _parent.editingDone(true);
}

void vnRegionSelectorView::redraw(const host::Rect& area) const {
    if (fWindow)
        fWindow->Redraw(area);
}

void vnRegionSelectorView::set_cursor(vnCursor cursor) const {
    if (fWindow)
        fWindow->SetCursor(cursor);
}
