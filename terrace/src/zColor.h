#pragma once

#include <cstdint>

/// A colour of four bytes. The packed forms are 32-bit numbers named from the most significant byte down.
class zColor {
  public:
    uint8_t red = 0;
    uint8_t green = 0;
    uint8_t blue = 0;
    uint8_t alpha = 255;

    /// Opaque black.
    constexpr zColor() = default;
    constexpr zColor(uint8_t r, uint8_t g, uint8_t b, uint8_t a = 255)
        : red(r), green(g), blue(b), alpha(a) {}
    /// From the RGBA packing.
    constexpr explicit zColor(unsigned int rgba)
        : red(byte_of(rgba, 24)), green(byte_of(rgba, 16)), blue(byte_of(rgba, 8)), alpha(byte_of(rgba, 0)) {}

    constexpr unsigned int RGBA() const { return pack(red, green, blue, alpha); }
    constexpr unsigned int ARGB() const { return pack(alpha, red, green, blue); }
    constexpr unsigned int ABGR() const { return pack(alpha, blue, green, red); }
    constexpr unsigned int BGRA() const { return pack(blue, green, red, alpha); }
    /// The number that lies in memory as a pixel of a captured frame: bytes b, g, r, a on
    /// a little-endian machine.
    constexpr unsigned int PlatformUInt32() const { return ARGB(); }

    constexpr void SetARGB(unsigned int v) {
        *this = zColor(byte_of(v, 16), byte_of(v, 8), byte_of(v, 0), byte_of(v, 24));
    }
    constexpr void SetABGR(unsigned int v) {
        *this = zColor(byte_of(v, 0), byte_of(v, 8), byte_of(v, 16), byte_of(v, 24));
    }
    constexpr void SetBGRA(unsigned int v) {
        *this = zColor(byte_of(v, 8), byte_of(v, 16), byte_of(v, 24), byte_of(v, 0));
    }

    /// Mean of the three channels times alpha, 0 to 1.
    float Brightness() const;
    /// Hue in degrees (0 up to 360, 0 for grey), saturation and value 0 to 1.
    void GetHSV(float& hue, float& saturation, float& value) const;

    constexpr bool operator==(const zColor&) const = default;

  private:
    static constexpr uint8_t byte_of(unsigned int packed, int shift) {
        return static_cast<uint8_t>(packed >> shift & 0xFF);
    }
    static constexpr unsigned int pack(unsigned int b3, unsigned int b2, unsigned int b1, unsigned int b0) {
        return b3 << 24 | b2 << 16 | b1 << 8 | b0;
    }
};
