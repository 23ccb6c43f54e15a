#include "vnSnapshot_ogl.h"

#include <cstring>

#include "Host.h"
#include "vnSnapshotBuffer.h"
#include "z4CCCC.h"
#include "zOS.h"

namespace {

constexpr int kBytesPerPixel = 4;

/// Nobody points with more; it keeps the sizes of shapes, which any program sets, far from the limits of an
/// int.
constexpr int kMaxCursorExtent = 4096;

/// Copies rows of \p rowBytes so that the first becomes the last, growing \p image where it is too small.
int copy_rows_reversed(zBuffer& image, const uint8_t* pixels, int rowBytes, int height) {
    const auto size = static_cast<unsigned int>(rowBytes * height);
    if (image.Size() < size) {
        if (const int result = image.ResizeTo(size, 0); result != 0)
            return result;
    }
    char* target = image.Data();
    for (int row = height - 1; row >= 0; --row, target += rowBytes)
        memcpy(target, pixels + static_cast<ptrdiff_t>(row) * rowBytes, static_cast<size_t>(rowBytes));
    return 0;
}

bool system_caches_cursor() {
    return zOS::IsVersion(z4CCCC("tigr")) || zOS::IsVersion(z4CCCC("leop"));
}

} // namespace

vnSnapshot_ogl::vnSnapshot_ogl(host::DisplayId display) : fDisplay(display) {}

vnSnapshot_ogl::~vnSnapshot_ogl() = default;

vnSnapshotBuffer* vnSnapshot_ogl::NewBuffer() {
    return new vnSnapBuff_ogl;
}

int vnSnapshot_ogl::do_open() {
    if (fContext)
        return -1;
    host::Displays& displays = host::Host::Current().DisplaysPort();
    fContext = displays.OpenFramebuffer(fDisplay ? fDisplay : displays.MainDisplay());
    if (!fContext)
        return -1;
    update_device_rect();
    return 0;
}

void vnSnapshot_ogl::do_close() {
    fContext.reset();
}

int vnSnapshot_ogl::Grab(vnSnapshotBuffer** buffer, const zRect& crop, zRect* captured) {
    if (!fContext || !buffer)
        return -1;
    replace_foreign(buffer, vnSnapBuff_ogl::kTypeTag);

    zRect local = local_rect(crop);
    if (local.Width() > kMaximumExtent)
        local.right = zRect::Add(local.left, kMaximumExtent - 1);
    if (local.Height() > kMaximumExtent)
        local.bottom = zRect::Add(local.top, kMaximumExtent - 1);
    if (local.Width() < 0 || local.Height() < 0)
        return -1;
    const int result = read_into(static_cast<vnSnapBuff_ogl&>(**buffer), local);
    if (captured)
        *captured = screen_rect(local);
    return result;
}

void vnSnapshot_ogl::replace_foreign(vnSnapshotBuffer** buffer, uint32_t ownTypeTag) {
    if (*buffer && (*buffer)->TypeTag() == ownTypeTag)
        return;
    if (*buffer)
        (*buffer)->Release();
    *buffer = NewBuffer();
}

int vnSnapshot_ogl::read_into(vnSnapBuff_ogl& frame, const zRect& local) {
    const int width = local.Width();
    const int height = local.Height();
    const int size = width * height * kBytesPerPixel;
    if (frame.Size() != size) {
        if (const int result = frame.Store().ResizeTo(static_cast<unsigned int>(size), 0); result != 0)
            return result;
    }
    // A framebuffer counts its rows from the bottom.
    const int bottom = zRect::Subtract(zRect::Subtract(fDeviceRect.Height(), local.top), height);
    if (fContext->Read(local.left, bottom, width, height, frame.Data()) != 0)
        return -1;
    frame.Configure(width, height, width * kBytesPerPixel, static_cast<int>(kColorSpace_bgra));
    return 0;
}

int vnSnapshot_ogl::SetDisplay(host::DisplayId display) {
    if (is_open())
        do_close();
    fDisplay = display;
    return is_open() ? do_open() : 0;
}

void vnSnapshot_ogl::FollowDisplay() {
    if (!is_open() || place_of_display() == fDeviceRect)
        return;
    do_close();
    update_device_rect(); // Also of a display that has gone, which doesn't open.
    do_open();
}

zRect vnSnapshot_ogl::place_of_display() const {
    host::Displays& displays = host::Host::Current().DisplaysPort();
    const host::Rect bounds = displays.Bounds(fDisplay ? fDisplay : displays.MainDisplay());
    return zRect::FromOriginAndSize(bounds.x, bounds.y, bounds.width, bounds.height);
}

zRect vnSnapshot_ogl::local_rect(const zRect& crop) const {
    return {zRect::Subtract(crop.left, fDeviceRect.left), zRect::Subtract(crop.top, fDeviceRect.top),
            zRect::Subtract(fDeviceRect.Width() - 1, crop.right),
            zRect::Subtract(fDeviceRect.Height() - 1, crop.bottom)};
}

zRect vnSnapshot_ogl::screen_rect(const zRect& local) const {
    return {zRect::Add(local.left, fDeviceRect.left), zRect::Add(local.top, fDeviceRect.top),
            zRect::Add(local.right, fDeviceRect.left), zRect::Add(local.bottom, fDeviceRect.top)};
}

int vnSnapshot_ogl::MouseInfo(zRect& rect, zBuffer& image, int& rowBytes, int& colorSpace) {
    host::Pointer& pointer = host::Host::Current().PointerPort();
    if (!pointer.IsVisible() || pointer.IsDrawnInFramebuffer())
        return -1;

    const bool caches = system_caches_cursor();
    const uint32_t seed = caches ? pointer.Seed() : 0;
    if (caches && fCursor.colorSpace != 0 && fCursor.seed == seed)
        return cached_cursor(rect, image, rowBytes, colorSpace);

    zPoint hotSpot;
    const int result = fetch_cursor(rect, image, rowBytes, colorSpace, hotSpot);
    if (result == 0 && caches) {
        fCursor.image.SetAndCopyData(image.Data(), image.Size(), 0);
        fCursor.seed = seed;
        fCursor.rect = rect;
        fCursor.rowBytes = rowBytes;
        fCursor.colorSpace = colorSpace;
        fCursor.hotSpot = hotSpot;
    }
    return result;
}

int vnSnapshot_ogl::cached_cursor(zRect& rect, zBuffer& image, int& rowBytes, int& colorSpace) {
    host::Point location;
    if (host::Host::Current().PointerPort().Location(location) != 0)
        return -1;
    image.SetAndCopyData(fCursor.image.Data(), fCursor.image.Size(), 0);
    const int left = static_cast<int>(location.x) - fCursor.hotSpot.x;
    const int top = static_cast<int>(location.y) - fCursor.hotSpot.y;
    rect = zRect::FromOriginAndSize(left, top, fCursor.rect.Width(), fCursor.rect.Height());
    rowBytes = fCursor.rowBytes;
    colorSpace = fCursor.colorSpace;
    return 0;
}

int vnSnapshot_ogl::fetch_cursor(zRect& rect, zBuffer& image, int& rowBytes, int& colorSpace,
                                 zPoint& hotSpot) {
    host::Pointer& pointer = host::Host::Current().PointerPort();
    host::Point location;
    host::PointerPicture picture;
    if (pointer.Location(location) != 0 || pointer.Picture(picture) != 0)
        return -1;
    if (picture.width > kMaxCursorExtent || picture.height > kMaxCursorExtent)
        return -1;

    const int bytes = picture.width * kBytesPerPixel;
    if (const int result = copy_rows_reversed(image, picture.pixels, bytes, picture.height); result != 0)
        return result;
    rect = zRect::FromOriginAndSize(location.x - picture.hotSpot.x, location.y - picture.hotSpot.y,
                                    picture.width, picture.height);
    rowBytes = bytes;
    colorSpace = static_cast<int>(kColorSpace_argb);
    hotSpot = zPoint(static_cast<int>(picture.hotSpot.x), static_cast<int>(picture.hotSpot.y));
    return 0;
}
