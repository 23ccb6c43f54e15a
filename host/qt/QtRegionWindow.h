#pragma once

#include <QPixmap>
#include <QWidget>

#include "vnRegionSelectorWindow.h"

class vnRegionSelectorView;

namespace host {

/// The window of the region overlay. It covers one screen, above everything, and asks the view for all it
/// draws. Where the screen can't show what is behind a window, it shows a picture of that.
class QtRegionWindow : public vnRegionSelectorWindow {
  public:
    explicit QtRegionWindow(vnRegionSelectorView& view);
    ~QtRegionWindow() override;

    void Open(const host::Rect& frame) override;
    void SetAlpha(double alpha) override;
    void Redraw(const host::Rect& area) override;
    void SetCursor(vnCursor cursor) override;

  private:
    class Window;
    std::unique_ptr<Window> fWindow;
};

} // namespace host
