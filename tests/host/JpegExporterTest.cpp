#include "JpegExporter.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include <gtest/gtest.h>
#include <turbojpeg.h>

namespace {

struct Picture {
    int width = 0;
    int height = 0;
    int subsampling = -1;
    std::vector<uint8_t> bgrx;
};

Picture decoded(const host::PictureBlock& block) {
    Picture picture;
    tjhandle decoder = tjInitDecompress();
    int colours = 0;
    if (tjDecompressHeader3(decoder, block.Data(), block.Size(), &picture.width, &picture.height,
                            &picture.subsampling, &colours) == 0) {
        picture.bgrx.resize(static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height) * 4);
        tjDecompress2(decoder, block.Data(), block.Size(), picture.bgrx.data(), picture.width, 0,
                      picture.height, TJPF_BGRX, 0);
    }
    tjDestroy(decoder);
    return picture;
}

/// Smooth colours that tell every direction apart, with garbage in the undefined bytes and behind the rows.
std::vector<uint8_t> gradient(int width, int height, int rowBytes) {
    std::vector<uint8_t> pixels(static_cast<size_t>(rowBytes) * static_cast<size_t>(height), 0xA5);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            uint8_t* pixel = pixels.data() + static_cast<ptrdiff_t>(y) * rowBytes + x * 4;
            pixel[0] = static_cast<uint8_t>(x * 255 / width);
            pixel[1] = static_cast<uint8_t>(y * 255 / height);
            pixel[2] = 40;
        }
    }
    return pixels;
}

double mean_error(const Picture& picture, const std::vector<uint8_t>& pixels, int rowBytes) {
    double sum = 0;
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width * 4; ++x) {
            if (x % 4 < 3)
                sum += std::abs(picture.bgrx[static_cast<size_t>(y * picture.width * 4 + x)] -
                                pixels[static_cast<size_t>(y * rowBytes + x)]);
        }
    }
    return sum / (picture.width * picture.height * 3);
}

bool is_baseline(const host::PictureBlock& block) {
    const uint8_t startOfFrame[2] = {0xFF, 0xC0};
    return std::search(block.Data(), block.Data() + block.Size(), startOfFrame, startOfFrame + 2) !=
           block.Data() + block.Size();
}

TEST(JpegExporter, KeepsPixelsAndRowOrderAtEveryQuality) {
    constexpr int kWidth = 173;
    constexpr int kHeight = 61;
    constexpr int kRowBytes = kWidth * 4 + 20;
    const auto pixels = gradient(kWidth, kHeight, kRowBytes);
    const auto exporter = host::NewJpegExporter(kWidth, kHeight, kRowBytes);
    const auto block = host::NewJpegBlock();
    ASSERT_EQ(exporter->SetOutput(*block), 0);
    exporter->SetInputPixels(pixels.data());
    size_t previousSize = 0;
    for (const int quality : {256, 512, 768}) {
        ASSERT_EQ(exporter->SetCompressionQuality(quality), 0);
        ASSERT_EQ(exporter->Export(), 0);
        const Picture picture = decoded(*block);
        ASSERT_EQ(picture.width, kWidth);
        ASSERT_EQ(picture.height, kHeight);
        EXPECT_TRUE(is_baseline(*block));
        EXPECT_LT(mean_error(picture, pixels, kRowBytes), 4) << quality;
        EXPECT_GT(block->Size(), previousSize) << quality;
        previousSize = block->Size();
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

    const auto pixels = gradient(65500, 1, 65500 * 4);
    const auto widest = host::NewJpegExporter(65500, 1, 65500 * 4);
    const auto block = host::NewJpegBlock();
    widest->SetOutput(*block);
    widest->SetInputPixels(pixels.data());
    EXPECT_EQ(widest->Export(), 0);
    EXPECT_EQ(decoded(*block).width, 65500);
}

} // namespace
