#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace host {

/// How a server lays out the images of a true-colour visual, as its connection set-up tells.
struct X11PixelLayout {
    int bitsPerPixel = 0; ///< In an image; padding included.
    int scanlinePad = 0;  ///< Rows are padded to a multiple of so many bits.
    bool mostSignificantByteFirst = false;
    uint32_t redMask = 0;
    uint32_t greenMask = 0;
    uint32_t blueMask = 0;
};

/// Turns images of one layout into bytes b, g, r and an undefined one. It needs no server.
class X11PixelFormat {
  public:
    explicit X11PixelFormat(const X11PixelLayout& layout);

    /// False for pixels of other than 2, 3 or 4 bytes or without three channels.
    bool IsSupported() const { return fIsSupported; }

    /// True when images need no conversion.
    bool IsNative() const { return fIsNative; }

    /// The bytes from one row of an image to the next.
    size_t RowBytes(int width) const;

    /// Converts a row of \p width pixels into width * 4 bytes. The layout must be supported.
    void ConvertRow(const uint8_t* source, int width, uint8_t* target) const;

  private:
    /// Where a channel's bits are, and what they mean on a scale to 255. Of more than eight bits the top
    /// eight count.
    struct Channel {
        int shift = 0;
        uint32_t limit = 0; ///< The channel's bits behind the shift.
        std::array<uint8_t, 256> scaled{};

        uint8_t Of(uint32_t pixel) const { return scaled[pixel >> shift & limit]; }
    };
    static Channel channel(uint32_t mask);

    template <int kBytes, bool kMostSignificantFirst>
    void convert(const uint8_t* source, int width, uint8_t* target) const;

    X11PixelLayout fLayout;
    bool fIsSupported;
    bool fIsNative;
    Channel fBlue;
    Channel fGreen;
    Channel fRed;
};

} // namespace host
