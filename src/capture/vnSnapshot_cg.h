#pragma once

#include "vnSnapshot_ogl.h"

namespace host {
struct Image;
}

/// Captures a display through the machine's picture call. Its frames are exactly what a framebuffer read
/// gives: 32-bit b, g, r, a, bottom row first, one pixel for each pixel of the rectangle.
class vnSnapshot_cg : public vnSnapshot_ogl {
  public:
    /// The largest frame, in bytes: a desktop of 8192 by 8192. A crop may reach beyond the display and so ask
    /// for any size; more than this is refused like memory that can't be had.
    static constexpr int64_t kMaxFrameBytes = int64_t{8192} * 8192 * 4;

    explicit vnSnapshot_cg(host::DisplayId display) : vnSnapshot_ogl(display) {}

    vnSnapshotBuffer* NewBuffer() override;
    int Grab(vnSnapshotBuffer** buffer, const zRect& crop, zRect* captured) override;

  protected:
    int do_open() override;
    void do_close() override {}

  private:
    int capture_into(class vnSnapBuff_cg& frame, const zRect& rect);
    int draw_to_buffer_and_flip(void* data, int rowBytes, const host::Image& image, const zRect& rect);
};
