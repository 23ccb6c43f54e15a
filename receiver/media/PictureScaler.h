#pragma once

#include <cstdint>

#include "Libav.h"

namespace receiver {

/// Brings b, g, r, x pixels of any size into frames of one size and kind. A picture of another shape stays
/// in the middle, with black at its sides.
class PictureScaler {
  public:
    /// Draws into a writable frame: BGR0, or YUV420P of the frame's own matrix and limited range. False
    /// without memory.
    bool Draw(const uint8_t* pixels, int width, int height, int rowBytes, AVFrame& frame);

  private:
    /// Where the picture lies within the frame.
    struct Place {
        int x = 0, y = 0, width = 0, height = 0;
    };

    bool prepare(int width, int height, AVFrame& frame);
    static Place fit(int width, int height, const AVFrame& frame);

    LibavPointer<SwsContext> fScaler;
    Place fPlace;
    int fWidth = 0; ///< Of the pictures; 0 before the first.
    int fHeight = 0;
    int fSourceRows = 0; ///< That are looked at.
};

} // namespace receiver
