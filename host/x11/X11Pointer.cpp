#include "X11Pointer.h"

#include <xcb/xcb.h>
#include <xcb/xfixes.h>

#include "X11Reply.h"

namespace host {

bool X11Pointer::IsVisible() {
    fWasSeen = false;
    if (!fConnection.HasCursor())
        return false;
    xcb_connection_t* xcb = fConnection.Xcb();
    const auto cookie = xcb_xfixes_get_cursor_image(xcb);
    const X11Reply<xcb_xfixes_get_cursor_image_reply_t> look(
        xcb_xfixes_get_cursor_image_reply(xcb, cookie, nullptr));
    if (!look)
        return false;
    const auto count = static_cast<size_t>(look->width) * look->height;
    const auto* argb = xcb_xfixes_get_cursor_image_cursor_image(look.get());
    // A program hides the pointer by giving it an empty shape.
    if (!take_pixels(argb, count))
        return false;
    fLocation = {static_cast<double>(look->x), static_cast<double>(look->y)};
    fSeed = look->cursor_serial;
    fPicture = {fPixels.data(),
                look->width,
                look->height,
                {static_cast<double>(look->xhot), static_cast<double>(look->yhot)}};
    fWasSeen = true;
    return true;
}

int X11Pointer::Location(Point& location) {
    if (!fWasSeen)
        return -1;
    location = fLocation;
    return 0;
}

int X11Pointer::Picture(PointerPicture& picture) {
    if (!fWasSeen)
        return -1;
    picture = fPicture;
    return 0;
}

/// Takes the pixels over as bytes a, r, g, b. False when none of them can be seen.
bool X11Pointer::take_pixels(const uint32_t* argb, size_t count) {
    fPixels.resize(count * 4);
    uint32_t anyAlpha = 0;
    uint8_t* target = fPixels.data();
    for (size_t i = 0; i < count; ++i, target += 4) {
        anyAlpha |= argb[i] >> 24;
        for (int byte = 0; byte < 4; ++byte)
            target[byte] = static_cast<uint8_t>(argb[i] >> (24 - 8 * byte));
    }
    return anyAlpha != 0;
}

} // namespace host
