#pragma once

#include <vector>

#include "Displays.h"
#include "PixelRect.h"
#include "X11Connection.h"
#include "X11Reply.h"
#include "X11SharedSegment.h"

struct xcb_get_image_reply_t;

namespace host {

/// How pixels come from the server: through memory that both see where possible, else through the socket.
enum class X11Transport { kSharedMemory, kSocket };

/// Fetches pixels of the root window. The common layout is handed out as the server wrote it, any other one
/// converted. One thread at a time.
class X11Grabber {
  public:
    X11Grabber(const X11Connection& connection, X11Transport transport);

    /// The pixels of \p area, which lies within the screen; valid until the next call. 0, or -1 when the
    /// server refuses, which it does if the screen has become smaller.
    int Grab(const PixelRect& area, Image& image);

    X11Transport Transport() const { return fTransport; }

  private:
    const uint8_t* fetch(const PixelRect& area);
    const uint8_t* fetch_shared(const PixelRect& area);
    const uint8_t* fetch_sent(const PixelRect& area);
    size_t image_bytes(const PixelRect& area) const;
    const uint8_t* convert(const uint8_t* source, const PixelRect& area);

    const X11Connection& fConnection;
    X11Transport fTransport;
    X11SharedSegment fSegment;
    X11Reply<xcb_get_image_reply_t> fSent;
    std::vector<uint8_t> fConverted;
};

} // namespace host
