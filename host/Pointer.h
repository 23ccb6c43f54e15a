#pragma once

#include <cstdint>

#include "Geometry.h"

namespace host {

/// A view of the pointer's shape, owned by the port: 32 bits a pixel, the bytes in memory a, r, g, b with
/// colours premultiplied by alpha; top row first, rows without padding. Valid until the port's next look.
struct PointerPicture {
    const uint8_t* pixels = nullptr;
    int width = 0;
    int height = 0;
    Point hotSpot; ///< The pointing pixel, from the picture's left top corner.
};

/// The pointer. One thread at a time.
///
/// IsVisible() takes a look at the machine's pointer; Location(), Seed() and Picture() tell what that look
/// saw, so that a place, a hot spot and a shape always belong together and cost one exchange with the
/// machine.
class Pointer {
  public:
    virtual ~Pointer() = default;

    /// Takes a look. False while the pointer is hidden, and when there is none.
    virtual bool IsVisible() = 0;

    /// True when the pictures of the displays port already contain the pointer.
    virtual bool IsDrawnInFramebuffer() = 0;

    /// Where the hot spot is, in desktop coordinates. 0, or -1 when the last look saw none.
    virtual int Location(Point& location) = 0;

    /// A number that changes whenever the shape does.
    virtual uint32_t Seed() = 0;

    /// The shape. 0, or -1 when the last look saw none.
    virtual int Picture(PointerPicture& picture) = 0;
};

} // namespace host
