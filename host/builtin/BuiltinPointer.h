#pragma once

#include <vector>

#include "Clock.h"
#include "Pointer.h"

namespace host {

/// A pointer that circles the first display's centre and takes turns between two shapes, an arrow and a ring,
/// as its clock goes on.
class BuiltinPointer : public Pointer {
  public:
    explicit BuiltinPointer(Clock& clock);

    bool IsVisible() override;
    bool IsDrawnInFramebuffer() override { return false; }
    int Location(Point& location) override;
    uint32_t Seed() override;
    int Picture(PointerPicture& picture) override;

  private:
    struct Shape {
        std::vector<uint8_t> pixels;
        int width;
        int height;
        Point hotSpot;
    };
    static Shape arrow();
    static Shape ring();
    const Shape& shape() const;

    Clock& fClock;
    int64_t fLook = -1; ///< The time of the last look; negative before the first.
    Shape fArrow;
    Shape fRing;
};

} // namespace host
