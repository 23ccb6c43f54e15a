#include "PointerImage.h"

#include <algorithm>

#include <png.h>

#include "PointerShapes.h"

namespace receiver {

namespace {

/// PNG keeps colours that are not multiplied with alpha.
std::vector<uint8_t> straight_colours(std::vector<uint8_t> pixels) {
    for (size_t i = 0; i + 3 < pixels.size(); i += 4)
        if (const int alpha = pixels[i + 3]; alpha != 0)
            for (size_t channel = i; channel < i + 3; ++channel)
                pixels[channel] =
                    static_cast<uint8_t>(std::min(255, (pixels[channel] * 255 + alpha / 2) / alpha));
    return pixels;
}

} // namespace

std::string PointerImage(const PointerShape& shape) {
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(shape.width);
    image.height = static_cast<png_uint_32>(shape.height);
    image.format = PNG_FORMAT_BGRA;
    const std::vector<uint8_t> pixels = straight_colours(shape.pixels);
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    std::string out(size, '\0');
    if (png_image_write_to_memory(&image, out.data(), &size, 0, pixels.data(), 0, nullptr) == 0)
        return {};
    out.resize(size);
    return out;
}

} // namespace receiver
