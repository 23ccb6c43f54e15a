#include "X11PixelFormat.h"

#include <algorithm>
#include <bit>

namespace host {

X11PixelFormat::X11PixelFormat(const X11PixelLayout& layout)
    : fLayout(layout),
      fBlue(channel(layout.blueMask)),
      fGreen(channel(layout.greenMask)),
      fRed(channel(layout.redMask)) {
    const int bits = layout.bitsPerPixel;
    fIsSupported = (bits == 16 || bits == 24 || bits == 32) && layout.scanlinePad >= 8 && layout.redMask &&
                   layout.greenMask && layout.blueMask;
    const bool first = layout.mostSignificantByteFirst;
    fIsNative = bits == 32 && layout.blueMask == (first ? 0xFF000000 : 0x000000FF) &&
                layout.greenMask == (first ? 0x00FF0000 : 0x0000FF00) &&
                layout.redMask == (first ? 0x0000FF00 : 0x00FF0000);
}

size_t X11PixelFormat::RowBytes(int width) const {
    const size_t bits = static_cast<size_t>(width) * static_cast<size_t>(fLayout.bitsPerPixel);
    const size_t pad = static_cast<size_t>(fLayout.scanlinePad);
    return (bits + pad - 1) / pad * pad / 8;
}

void X11PixelFormat::ConvertRow(const uint8_t* source, int width, uint8_t* target) const {
    const bool first = fLayout.mostSignificantByteFirst;
    switch (fLayout.bitsPerPixel) {
    case 16:
        return first ? convert<2, true>(source, width, target) : convert<2, false>(source, width, target);
    case 24:
        return first ? convert<3, true>(source, width, target) : convert<3, false>(source, width, target);
    default:
        return first ? convert<4, true>(source, width, target) : convert<4, false>(source, width, target);
    }
}

X11PixelFormat::Channel X11PixelFormat::channel(uint32_t mask) {
    Channel result;
    if (mask == 0)
        return result;
    const int bits = std::bit_width(mask) - std::countr_zero(mask);
    const int used = std::min(bits, 8);
    result.shift = std::bit_width(mask) - used;
    result.limit = (1U << used) - 1;
    for (uint32_t value = 0; value <= result.limit; ++value)
        result.scaled[value] = static_cast<uint8_t>((value * 255 + result.limit / 2) / result.limit);
    return result;
}

template <int kBytes, bool kMostSignificantFirst>
void X11PixelFormat::convert(const uint8_t* source, int width, uint8_t* target) const {
    for (int x = 0; x < width; ++x, source += kBytes, target += 4) {
        uint32_t pixel = 0;
        for (int i = 0; i < kBytes; ++i)
            pixel |= static_cast<uint32_t>(source[i]) << 8 * (kMostSignificantFirst ? kBytes - 1 - i : i);
        target[0] = fBlue.Of(pixel);
        target[1] = fGreen.Of(pixel);
        target[2] = fRed.Of(pixel);
        target[3] = 0xFF;
    }
}

} // namespace host
