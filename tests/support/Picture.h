#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include <turbojpeg.h>

/// What a client makes of a picture: rows top first, three bytes r, g, b.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<uint8_t> pixels;

    /// False for what is no JPEG.
    bool Decode(const std::string& jpeg) {
        const auto* bytes = reinterpret_cast<const unsigned char*>(jpeg.data());
        tjhandle decoder = tjInitDecompress();
        int subsampling = 0, space = 0;
        bool isDone =
            tjDecompressHeader3(decoder, bytes, jpeg.size(), &width, &height, &subsampling, &space) == 0;
        if (isDone) {
            pixels.resize(static_cast<size_t>(width * height * 3));
            // Pictures travel upside down.
            isDone = tjDecompress2(decoder, bytes, jpeg.size(), pixels.data(), 0, 0, 0, TJPF_RGB,
                                   TJFLAG_BOTTOMUP) == 0;
        }
        tjDestroy(decoder);
        return isDone;
    }

    const uint8_t* At(int x, int y) const { return &pixels[static_cast<size_t>((y * width + x) * 3)]; }

    /// The largest difference of a channel from 0xRRGGBB; 255 for a place outside of the picture.
    int Difference(int x, int y, uint32_t colour) const {
        if (x >= width || y >= height)
            return 255;
        int largest = 0;
        for (int i = 0; i < 3; ++i)
            largest =
                std::max(largest, std::abs(At(x, y)[i] - static_cast<int>(colour >> (16 - 8 * i) & 0xFF)));
        return largest;
    }
};
