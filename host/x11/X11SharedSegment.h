#pragma once

#include <cstddef>
#include <cstdint>

struct xcb_connection_t;

namespace host {

/// Memory that this process and the X server both see. It grows on demand, is private to the user, and has no
/// name any more once both sides hold it, so that nothing stays behind however either side ends.
class X11SharedSegment {
  public:
    explicit X11SharedSegment(xcb_connection_t* xcb) : fXcb(xcb) {}
    ~X11SharedSegment() { release(); }
    X11SharedSegment(const X11SharedSegment&) = delete;
    X11SharedSegment& operator=(const X11SharedSegment&) = delete;

    /// Makes room for \p bytes; what was in a smaller segment is gone. 0, or -1 when either side refuses.
    int Reserve(size_t bytes);

    /// The server's name for the segment; only after Reserve.
    uint32_t Id() const { return fId; }
    const uint8_t* Pixels() const { return fPixels; }

  private:
    bool attach_server(int segment);
    void release();

    xcb_connection_t* fXcb;
    uint32_t fId = 0;
    uint8_t* fPixels = nullptr;
    size_t fCapacity = 0;
};

} // namespace host
