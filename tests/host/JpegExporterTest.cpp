#include "JpegExporter.h"

#include <vector>

#include <gtest/gtest.h>

#include "Picture.h"

namespace {

std::string bytes_of(const host::PictureBlock& block) {
    return {reinterpret_cast<const char*>(block.Data()), block.Size()};
}

/// A smooth colour that tells every direction apart.
uint32_t colour_at(int x, int y) {
    return static_cast<uint32_t>(40 << 16 | (y * 4 & 0xFF) << 8 | (x & 0xFF));
}

/// Pixels b, g, r and garbage, with more of it behind the rows.
std::vector<uint8_t> gradient(int width, int height, int rowBytes) {
    std::vector<uint8_t> pixels(static_cast<size_t>(rowBytes) * static_cast<size_t>(height), 0xA5);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            uint8_t* pixel = pixels.data() + static_cast<ptrdiff_t>(y) * rowBytes + x * 4;
            for (int i = 0; i < 3; ++i)
                pixel[i] = static_cast<uint8_t>(colour_at(x, y) >> 8 * i);
        }
    }
    return pixels;
}

TEST(JpegExporter, KeepsPixelsAndRowOrderAtEveryQuality) {
    constexpr int kWidth = 173;
    constexpr int kHeight = 61;
    constexpr int kRowBytes = kWidth * 4 + 20;
    const auto pixels = gradient(kWidth, kHeight, kRowBytes);
    const auto exporter = host::NewJpegExporter(kWidth, kHeight, kRowBytes);
    const auto block = host::NewJpegBlock();
    EXPECT_EQ(exporter->Export(), -1) << "no pixels, no block";
    ASSERT_EQ(exporter->SetOutput(*block), 0);
    exporter->SetInputPixels(pixels.data());
    size_t previousSize = 0;
    for (const int quality : {256, 512, 768}) {
        ASSERT_EQ(exporter->SetCompressionQuality(quality), 0);
        ASSERT_EQ(exporter->Export(), 0);
        EXPECT_NE(bytes_of(*block).find("\xFF\xC0"), std::string::npos) << "a baseline picture";
        EXPECT_GT(block->Size(), previousSize) << quality;
        previousSize = block->Size();
        Picture picture;
        ASSERT_TRUE(picture.Decode(bytes_of(*block)));
        ASSERT_EQ(picture.width, kWidth);
        ASSERT_EQ(picture.height, kHeight);
        for (int y = 0; y < kHeight; ++y) {
            for (int x = 0; x < kWidth; ++x) // It is decoded from the bottom.
                ASSERT_LE(picture.Difference(x, kHeight - 1 - y, colour_at(x, y)), 16) << x << "," << y;
        }
    }
    for (const int quality : {-1, 0, 1, 257, 1024})
        EXPECT_EQ(exporter->SetCompressionQuality(quality), -1);
    EXPECT_EQ(exporter->Export(), 0);
    EXPECT_EQ(block->Size(), previousSize) << "the last quality stays";
}

TEST(JpegExporter, RefusesGeometryThatNoPictureHas) {
    const int refused[][3] = {{0, 1, 4},    {1, 0, 4},     {-1, 5, 400},          {5, -1, 400},
                              {10, 10, 39}, {10, 10, -40}, {65501, 1, 65501 * 4}, {1, 65501, 4}};
    for (const auto& g : refused)
        EXPECT_EQ(host::NewJpegExporter(g[0], g[1], g[2]), nullptr) << g[0] << " x " << g[1];
    EXPECT_NE(host::NewJpegExporter(65500, 1, 65500 * 4), nullptr);
}

} // namespace
