#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// A face of 5 x 7 dots: capitals, digits and the signs of a clock, enough for a test card's labels.
namespace host::DotFace {

inline constexpr int kColumns = 5;
inline constexpr int kRows = 7;
inline constexpr int kAdvance = 6;

/// A row for each byte, top first; the lowest bit is the rightmost column.
using Glyph = std::array<uint8_t, kRows>;

/// Blank for a character that the face lacks.
const Glyph& GlyphOf(char character);

inline bool HasDot(const Glyph& glyph, int column, int row) {
    return glyph[static_cast<size_t>(row)] >> (kColumns - 1 - column) & 1;
}

} // namespace host::DotFace
