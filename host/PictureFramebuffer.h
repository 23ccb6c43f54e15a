#pragma once

#include "Displays.h"
#include "OpaqueRow.h"

namespace host {

/// The framebuffer of a display whose host has pictures: it reads through them.
class PictureFramebuffer : public Framebuffer {
  public:
    /// \p displays outlives it. \p place is the display's, as it is now.
    PictureFramebuffer(Displays& displays, const Rect& place) : fDisplays(displays), fPlace(place) {}

    int Read(int x, int y, int width, int height, void* pixels) override {
        if (width <= 0 || height <= 0)
            return 0;
        Image image;
        const double top = fPlace.y + fPlace.height - y - height;
        const Rect area{fPlace.x + x, top, static_cast<double>(width), static_cast<double>(height)};
        if (fDisplays.Picture(area, image) != 0 || image.width != width || image.height != height)
            return -1;
        auto* target = static_cast<uint8_t*>(pixels);
        for (int row = height - 1; row >= 0; --row, target += static_cast<ptrdiff_t>(width) * 4)
            CopyRowOpaque(target, image.pixels + static_cast<ptrdiff_t>(row) * image.rowBytes, width);
        return 0;
    }

  private:
    Displays& fDisplays;
    Rect fPlace;
};

} // namespace host
