#include "PictureFile.h"

#include <strings.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <vector>

#include <png.h>

#include "Jpeg.h"

namespace receiver {

namespace {

bool ends_with(const std::string& path, const char* suffix) {
    const size_t length = std::strlen(suffix);
    return path.size() > length && strcasecmp(path.c_str() + path.size() - length, suffix) == 0;
}

bool encode_png(const uint8_t* pixels, int width, int height, std::vector<uint8_t>& out) {
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    image.format = PNG_FORMAT_BGR;
    // Its own formats have either three bytes or an alpha that counts.
    std::vector<uint8_t> rows(static_cast<size_t>(width) * static_cast<size_t>(height) * 3);
    for (size_t i = 0; i < rows.size() / 3; ++i)
        std::memcpy(&rows[i * 3], pixels + i * 4, 3);
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    out.resize(size);
    const bool isDone = png_image_write_to_memory(&image, out.data(), &size, 0, rows.data(), 0, nullptr) != 0;
    out.resize(size);
    return isDone;
}

/// Beside the place, then moved there.
bool write_file(const std::string& path, const std::vector<uint8_t>& bytes) {
    const bool isStandard = path == "-";
    const std::string part = path + ".part";
    FILE* file = isStandard ? stdout : fopen(part.c_str(), "wb");
    if (!file)
        return false;
    bool isDone = fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    if (isStandard)
        return fflush(file) == 0 && isDone;
    isDone = fclose(file) == 0 && isDone;
    if (isDone && rename(part.c_str(), path.c_str()) == 0)
        return true;
    const int error = errno;
    remove(part.c_str());
    errno = error;
    return false;
}

} // namespace

bool PictureFile::IsKnown(const std::string& path) {
    return path == "-" || ends_with(path, ".jpg") || ends_with(path, ".jpeg") || ends_with(path, ".png");
}

bool PictureFile::Write(const std::string& path, const uint8_t* pixels, int width, int height, int quality,
                        std::string& reason) {
    std::vector<uint8_t> bytes;
    const bool isEncoded = ends_with(path, ".png")
                               ? encode_png(pixels, width, height, bytes)
                               : JpegEncoder().Encode(pixels, width, height, width * 4, quality, bytes);
    if (!isEncoded)
        reason = "the picture can't be encoded: not enough memory";
    else if (!write_file(path, bytes))
        reason = path + " can't be written: " + std::strerror(errno);
    return reason.empty();
}

} // namespace receiver
