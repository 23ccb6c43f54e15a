#include "X11Pointer.h"

#include <utility>

#include <xcb/xcb.h>
#include <xcb/xfixes.h>

#include "X11Reply.h"

namespace host {

bool X11Pointer::IsVisible() {
    // Before the look: a change that comes during it is news to the next one.
    const uint32_t state = fReports.PointerState();
    std::shared_ptr<X11Session> session = fLink.Session();
    const bool isShapeKnown = state != 0 && state == fState && session == fSession;
    if (session != fSession)
        fSerial = 0;
    fSession = std::move(session);
    if (isShapeKnown) {
        fWasSeen = fHasVisiblePixels && look_at_place(fSession->Connection());
    } else {
        const bool wasAnswered = look_at_all(fSession->Connection());
        fState = wasAnswered ? state : 0;
        fWasSeen = wasAnswered && fHasVisiblePixels;
    }
    return fWasSeen;
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

/// False when there is no answer, or the pointer is on another screen of the server.
bool X11Pointer::look_at_place(const X11Connection& connection) {
    xcb_connection_t* xcb = connection.Xcb();
    const X11Reply<xcb_query_pointer_reply_t> look(
        xcb_query_pointer_reply(xcb, xcb_query_pointer(xcb, connection.Root()), nullptr));
    if (!look || !look->same_screen)
        return false;
    fLocation = {static_cast<double>(look->root_x), static_cast<double>(look->root_y)};
    return true;
}

/// Place and shape together. False when there is no answer.
bool X11Pointer::look_at_all(const X11Connection& connection) {
    if (!connection.HasCursor())
        return false;
    xcb_connection_t* xcb = connection.Xcb();
    const auto cookie = xcb_xfixes_get_cursor_image(xcb);
    const X11Reply<xcb_xfixes_get_cursor_image_reply_t> look(
        xcb_xfixes_get_cursor_image_reply(xcb, cookie, nullptr));
    if (!look)
        return false;
    fLocation = {static_cast<double>(look->x), static_cast<double>(look->y)};
    if (std::exchange(fSerial, look->cursor_serial) == look->cursor_serial)
        return true;
    ++fSeed;
    take_pixels(xcb_xfixes_get_cursor_image_cursor_image(look.get()),
                static_cast<size_t>(look->width) * look->height);
    fPicture = {fPixels.data(),
                look->width,
                look->height,
                {static_cast<double>(look->xhot), static_cast<double>(look->yhot)}};
    return true;
}

/// Takes the pixels over as bytes a, r, g, b.
void X11Pointer::take_pixels(const uint32_t* argb, size_t count) {
    fPixels.resize(count * 4);
    uint32_t anyAlpha = 0;
    uint8_t* target = fPixels.data();
    for (size_t i = 0; i < count; ++i, target += 4) {
        anyAlpha |= argb[i] >> 24;
        for (int byte = 0; byte < 4; ++byte)
            target[byte] = static_cast<uint8_t>(argb[i] >> (24 - 8 * byte));
    }
    fHasVisiblePixels = anyAlpha != 0;
}

} // namespace host
