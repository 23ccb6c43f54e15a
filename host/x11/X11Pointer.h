#pragma once

#include <vector>

#include "Pointer.h"
#include "X11Connection.h"

namespace host {

/// The pointer as XFixes shows it: one exchange for a look. Without XFixes there is none to be seen.
class X11Pointer : public Pointer {
  public:
    explicit X11Pointer(const X11Connection& connection) : fConnection(connection) {}

    bool IsVisible() override;
    /// The server takes the pointer out of the pictures that it gives.
    bool IsDrawnInFramebuffer() override { return false; }
    int Location(Point& location) override;
    uint32_t Seed() override { return fSeed; }
    int Picture(PointerPicture& picture) override;

  private:
    bool take_pixels(const uint32_t* argb, size_t count);

    const X11Connection& fConnection;
    bool fWasSeen = false; ///< By the last look, and so below.
    Point fLocation;
    uint32_t fSeed = 0;
    PointerPicture fPicture;
    std::vector<uint8_t> fPixels;
};

} // namespace host
