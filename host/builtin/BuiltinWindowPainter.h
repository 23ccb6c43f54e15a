#pragma once

#include <vector>

#include "BuiltinWindow.h"
#include "PixelPen.h"

namespace host {

/// Keeps a window painted on the desktop's pixels, which belong to someone else, and puts back what it
/// covered when it moves on.
class BuiltinWindowPainter {
  public:
    BuiltinWindowPainter(const BuiltinWindow& window, uint8_t* desktop, const PixelRect& bounds,
                         int rowBytes);

    /// Shows the window as it is at that time, as far as it touches \p area now or did before.
    void Update(int64_t microseconds, const PixelRect& area);

  private:
    void paint(int64_t microseconds);
    void save();
    void restore();
    uint8_t* row(int index) const;

    const BuiltinWindow& fWindow;
    uint8_t* fDesktop;
    int fRowBytes;
    PixelPen fPen;
    int64_t fTime = -1; ///< What is painted; negative while nothing is.
    PixelRect fPlace;
    std::vector<uint8_t> fCovered;
};

} // namespace host
