#include "X11PixelFormat.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

using host::X11PixelFormat;
using host::X11PixelLayout;

namespace {

struct Conversion {
    const char* name;
    X11PixelLayout layout;
    std::vector<uint8_t> source; ///< Two pixels.
    std::vector<uint8_t> bgr;    ///< The same two, three bytes each.
};

const Conversion kConversions[] = {
    {"32 bits, blue first",
     {32, 32, false, 0xFF0000, 0xFF00, 0xFF},
     {1, 2, 3, 9, 250, 251, 252, 9},
     {1, 2, 3, 250, 251, 252}},
    {"32 bits, red first",
     {32, 32, false, 0xFF, 0xFF00, 0xFF0000},
     {1, 2, 3, 9, 250, 251, 252, 9},
     {3, 2, 1, 252, 251, 250}},
    {"32 bits, big-endian, red behind padding",
     {32, 32, true, 0xFF0000, 0xFF00, 0xFF},
     {9, 1, 2, 3, 9, 4, 5, 6},
     {3, 2, 1, 6, 5, 4}},
    // Ten bits a channel: full, and 0x200 of 0x3FF in red alone.
    {"30 of 32 bits",
     {32, 32, false, 0x3FF00000, 0xFFC00, 0x3FF},
     {0xFF, 0xFF, 0xFF, 0x3F, 0, 0, 0, 0x20},
     {255, 255, 255, 0, 0, 128}},
    {"24 packed bits", {24, 32, false, 0xFF0000, 0xFF00, 0xFF}, {1, 2, 3, 4, 5, 6}, {1, 2, 3, 4, 5, 6}},
    // 5, 6 and 5 bits: white, and the lowest bit of each.
    {"16 bits 5-6-5",
     {16, 32, false, 0xF800, 0x7E0, 0x1F},
     {0xFF, 0xFF, 0x21, 0x08},
     {255, 255, 255, 8, 4, 8}},
    {"15 of 16 bits",
     {16, 32, false, 0x7C00, 0x3E0, 0x1F},
     {0xFF, 0xFF, 0x00, 0x40},
     {255, 255, 255, 0, 0, 132}},
};

TEST(X11PixelFormat, ConvertsEveryTrueColourLayout) {
    for (const Conversion& row : kConversions) {
        SCOPED_TRACE(row.name);
        const X11PixelFormat format(row.layout);
        ASSERT_TRUE(format.IsSupported());
        uint8_t target[9] = {0, 0, 0, 0, 0, 0, 0, 0, 0x77};
        format.ConvertRow(row.source.data(), 2, target);
        const std::vector<uint8_t> bgr{target[0], target[1], target[2], target[4], target[5], target[6]};
        EXPECT_EQ(bgr, row.bgr);
        EXPECT_EQ(target[8], 0x77);
        EXPECT_EQ(format.IsNative(), &row == kConversions) << "only where every byte is in its place";
    }
}

} // namespace
