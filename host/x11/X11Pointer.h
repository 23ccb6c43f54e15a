#pragma once

#include <vector>

#include "Pointer.h"
#include "X11Link.h"
#include "X11Reports.h"

namespace host {

/// The pointer as XFixes shows it: one exchange for a look. The shape is part of it only when the server may
/// have another one. Without XFixes there is no pointer to be seen.
class X11Pointer : public Pointer {
  public:
    X11Pointer(const X11Link& link, const X11Reports& reports) : fLink(link), fReports(reports) {}

    bool IsVisible() override;
    /// The server takes the pointer out of the pictures that it gives.
    bool IsDrawnInFramebuffer() override { return false; }
    int Location(Point& location) override;
    uint32_t Seed() override { return fSeed; }
    int Picture(PointerPicture& picture) override;

  private:
    bool look_at_place(const X11Connection& connection);
    bool look_at_all(const X11Connection& connection);
    void take_pixels(const uint32_t* argb, size_t count);

    const X11Link& fLink;
    const X11Reports& fReports;
    bool fWasSeen = false; ///< By the last look, and so the place below.
    Point fLocation;

    // The shape as it was when it was last looked at.
    uint32_t fState = 0; ///< What the reports said then; 0 when the shape has to be looked at.
    std::shared_ptr<X11Session> fSession; ///< Whose server gave it the number below.
    uint32_t fSerial = 0;
    uint32_t fSeed = 0;
    bool fHasVisiblePixels = false; ///< A program hides the pointer by giving it an empty shape.
    PointerPicture fPicture;
    std::vector<uint8_t> fPixels;
};

} // namespace host
