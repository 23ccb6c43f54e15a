#include "vnSnapshot_cg.h"

#include "Host.h"
#include "OpaqueRow.h"
#include "vnSnapshotBuffer.h"

namespace {

constexpr int kBytesPerPixel = 4;

/// One row of a picture that has more pixels than its rectangle: the nearest pixel to the left of each place.
void sample_row_opaque(uint8_t* target, const uint8_t* source, int width, int sourceWidth) {
    for (int x = 0; x < width; ++x) {
        const auto from = static_cast<ptrdiff_t>(int64_t{x} * sourceWidth / width);
        host::CopyRowOpaque(target + x * kBytesPerPixel, source + from * kBytesPerPixel, 1);
    }
}

} // namespace

vnSnapshotBuffer* vnSnapshot_cg::NewBuffer() {
    return new vnSnapBuff_cg;
}

int vnSnapshot_cg::do_open() {
    update_device_rect();
    return 0;
}

int vnSnapshot_cg::Grab(vnSnapshotBuffer** buffer, const zRect& crop, zRect* captured) {
    if (!buffer || !MaximumRect().Valid())
        return -1;
    replace_foreign(buffer, vnSnapBuff_cg::kTypeTag);

    const zRect local = local_rect(crop);
    if (local.Width() < 0 || local.Height() < 0)
        return -1;
    const zRect rect = screen_rect(local);
    const int result = capture_into(static_cast<vnSnapBuff_cg&>(**buffer), rect);
    if (captured)
        *captured = rect;
    return result;
}

int vnSnapshot_cg::capture_into(vnSnapBuff_cg& frame, const zRect& rect) {
    const int width = rect.Width();
    const int height = rect.Height();
    const int64_t size = int64_t{width} * height * kBytesPerPixel;
    if (size > kMaxFrameBytes)
        return -1;
    if (frame.Size() != size) {
        if (const int result = frame.Store().ResizeTo(static_cast<unsigned int>(size), 0); result != 0)
            return result;
    }

    host::Image image;
    const host::Rect area{static_cast<double>(rect.left), static_cast<double>(rect.top),
                          static_cast<double>(width), static_cast<double>(height)};
    if (host::Host::Current().DisplaysPort().Picture(area, image) != 0)
        return -1;
    if (const int result = frame.Configure(width, height, width * kBytesPerPixel, kColorSpace_bgra);
        result != 0)
        return result;
    return draw_to_buffer_and_flip(frame.Store().Data(), frame.RowBytes(), image, rect);
}

int vnSnapshot_cg::draw_to_buffer_and_flip(void* data, int rowBytes, const host::Image& image,
                                           const zRect& rect) {
    const int width = rect.Width();
    const int height = rect.Height();
    if (!data || !image.pixels)
        return -1;
    auto* target = static_cast<uint8_t*>(data);
    for (int y = height - 1; y >= 0; --y, target += rowBytes) {
        const auto sourceRow = static_cast<ptrdiff_t>(int64_t{y} * image.height / height);
        const uint8_t* source = image.pixels + sourceRow * image.rowBytes;
        if (image.width == width)
            host::CopyRowOpaque(target, source, width);
        else
            sample_row_opaque(target, source, width, image.width);
    }
    return 0;
}
