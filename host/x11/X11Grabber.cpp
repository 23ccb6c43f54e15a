#include "X11Grabber.h"

#include <algorithm>

#include <xcb/shm.h>
#include <xcb/xcb.h>

namespace host {

static constexpr uint32_t kAllPlanes = ~0U;

X11Grabber::X11Grabber(const X11Connection& connection, X11Transport transport)
    : fConnection(connection),
      fTransport(connection.HasSharedMemory() ? transport : X11Transport::kSocket),
      fSegment(connection.Xcb()) {}

int X11Grabber::Grab(const PixelRect& area, Image& image) {
    const uint8_t* pixels = fetch(area);
    if (!pixels)
        return -1;
    if (!fConnection.Format().IsNative())
        pixels = convert(pixels, area);
    image = {pixels, area.width, area.height, area.width * 4};
    return 0;
}

const uint8_t* X11Grabber::fetch(const PixelRect& area) {
    // Room for the whole screen at once: pages that are never written to take no memory.
    if (fTransport == X11Transport::kSharedMemory &&
        fSegment.Reserve(std::max(image_bytes(area), image_bytes(fConnection.FirstScreen()))) != 0)
        fTransport = X11Transport::kSocket;
    return fTransport == X11Transport::kSharedMemory ? fetch_shared(area) : fetch_sent(area);
}

const uint8_t* X11Grabber::fetch_shared(const PixelRect& area) {
    xcb_connection_t* xcb = fConnection.Xcb();
    const auto cookie =
        xcb_shm_get_image(xcb, fConnection.Root(), static_cast<int16_t>(area.x), static_cast<int16_t>(area.y),
                          static_cast<uint16_t>(area.width), static_cast<uint16_t>(area.height), kAllPlanes,
                          XCB_IMAGE_FORMAT_Z_PIXMAP, fSegment.Id(), 0);
    const X11Reply<xcb_shm_get_image_reply_t> reply(xcb_shm_get_image_reply(xcb, cookie, nullptr));
    return reply && reply->depth == fConnection.Depth() ? fSegment.Pixels() : nullptr;
}

const uint8_t* X11Grabber::fetch_sent(const PixelRect& area) {
    xcb_connection_t* xcb = fConnection.Xcb();
    fSent.reset(); // Before the next one comes, so that there is one at a time.
    const auto cookie =
        xcb_get_image(xcb, XCB_IMAGE_FORMAT_Z_PIXMAP, fConnection.Root(), static_cast<int16_t>(area.x),
                      static_cast<int16_t>(area.y), static_cast<uint16_t>(area.width),
                      static_cast<uint16_t>(area.height), kAllPlanes);
    fSent.reset(xcb_get_image_reply(xcb, cookie, nullptr));
    if (!fSent || fSent->depth != fConnection.Depth() ||
        static_cast<size_t>(xcb_get_image_data_length(fSent.get())) < image_bytes(area))
        return nullptr;
    return xcb_get_image_data(fSent.get());
}

size_t X11Grabber::image_bytes(const PixelRect& area) const {
    return fConnection.Format().RowBytes(area.width) * static_cast<size_t>(area.height);
}

const uint8_t* X11Grabber::convert(const uint8_t* source, const PixelRect& area) {
    const X11PixelFormat& format = fConnection.Format();
    const size_t rowBytes = static_cast<size_t>(area.width) * 4;
    if (fConverted.size() < area.Bytes())
        fConverted.resize(area.Bytes());
    uint8_t* target = fConverted.data();
    for (int row = 0; row < area.height; ++row, source += format.RowBytes(area.width), target += rowBytes)
        format.ConvertRow(source, area.width, target);
    return fConverted.data();
}

} // namespace host
