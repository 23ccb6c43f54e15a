#include "BuiltinWindowPainter.h"

#include <cstring>

namespace host {
namespace {

constexpr uint32_t kEdge = 0xFFFFFF;
constexpr uint32_t kTitleBar = 0x24405C;
constexpr uint32_t kBody = 0xD8D4C8;
constexpr uint32_t kBlock = 0xC04020;

constexpr int kEdgeWidth = 2;
constexpr int kTitleHeight = 24;
constexpr int kTitleScale = 2;
constexpr int kBlockExtent = 24;
constexpr int64_t kLap = 2'000'000; ///< The block's time from the left to the right end.

} // namespace

BuiltinWindowPainter::BuiltinWindowPainter(const BuiltinWindow& window, uint8_t* desktop,
                                           const PixelRect& bounds, int rowBytes)
    : fWindow(window),
      fDesktop(desktop),
      fRowBytes(rowBytes),
      fPen(desktop, bounds.width, bounds.height, rowBytes),
      fCovered(PixelRect{0, 0, window.width, window.height}.Bytes()) {}

void BuiltinWindowPainter::Update(int64_t microseconds, const PixelRect& area) {
    const PixelRect place = fWindow.Place(microseconds);
    if (microseconds == fTime || (area.Intersection(place).IsEmpty() && area.Intersection(fPlace).IsEmpty()))
        return;
    if (fTime >= 0)
        restore();
    fPlace = place;
    fTime = microseconds;
    save();
    paint(microseconds);
}

/// A title bar, and a block that runs through the window, so that a picture of the window alone moves too.
void BuiltinWindowPainter::paint(int64_t microseconds) {
    PixelPen part = fPen.Part(fPlace);
    const PixelRect all{0, 0, fPlace.width, fPlace.height};
    part.Fill(all, kBody);
    part.Fill({0, 0, fPlace.width, kTitleHeight}, kTitleBar);
    const PixelRect text = PixelPen::TextBounds(fWindow.title, 0, 0, kTitleScale);
    part.Text(fWindow.title, (fPlace.width - text.width) / 2, (kTitleHeight - text.height) / 2 + 1,
              kTitleScale, kEdge);
    const int way = fPlace.width - kBlockExtent;
    part.Fill({static_cast<int>(microseconds % kLap * way / kLap),
               (fPlace.height + kTitleHeight - kBlockExtent) / 2, kBlockExtent, kBlockExtent},
              kBlock);
    part.Frame(all, kEdgeWidth, kEdge);
}

void BuiltinWindowPainter::save() {
    const auto bytes = static_cast<size_t>(fPlace.width) * 4;
    for (int i = 0; i < fPlace.height; ++i)
        std::memcpy(fCovered.data() + static_cast<size_t>(i) * bytes, row(i), bytes);
}

void BuiltinWindowPainter::restore() {
    const auto bytes = static_cast<size_t>(fPlace.width) * 4;
    for (int i = 0; i < fPlace.height; ++i)
        std::memcpy(row(i), fCovered.data() + static_cast<size_t>(i) * bytes, bytes);
}

/// The desktop's pixels under a row of the window.
uint8_t* BuiltinWindowPainter::row(int index) const {
    return fDesktop + static_cast<ptrdiff_t>(fPlace.y + index) * fRowBytes +
           static_cast<ptrdiff_t>(fPlace.x) * 4;
}

} // namespace host
