#pragma once

#include <cstdint>
#include <cstring>
#include <vector>

#include "Displays.h"
#include "PixelRect.h"

namespace host {

/// A picture that has to be put together because a part of it is nowhere on the machine: black, with what
/// there is copied to its place. Its memory is kept from one picture to the next.
class ComposedPicture {
  public:
    /// Composes the picture of \p area from \p visible, whose pixels are \p source. \p visible may be empty,
    /// and is within \p area otherwise. The result belongs to this object.
    Image Compose(const PixelRect& area, const PixelRect& visible, const Image& source) {
        const size_t rowBytes = static_cast<size_t>(area.width) * 4;
        fPixels.assign(area.Bytes(), 0);
        if (!visible.IsEmpty()) {
            uint8_t* target = fPixels.data() + static_cast<size_t>(visible.y - area.y) * rowBytes +
                              static_cast<size_t>(visible.x - area.x) * 4;
            for (int row = 0; row < visible.height; ++row, target += rowBytes)
                std::memcpy(target, source.pixels + static_cast<ptrdiff_t>(row) * source.rowBytes,
                            static_cast<size_t>(visible.width) * 4);
        }
        return {fPixels.data(), area.width, area.height, static_cast<int>(rowBytes)};
    }

  private:
    std::vector<uint8_t> fPixels;
};

} // namespace host
