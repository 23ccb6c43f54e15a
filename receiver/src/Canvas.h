#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "StreamReply.h"

namespace receiver {

/// The source as it looks now, upright: 32-bit pixels b, g, r, x, top row first, rows without gaps.
class Canvas {
  public:
    static constexpr int kPixelBytes = 4;

    Canvas();
    ~Canvas();
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    /// Draws the pictures of a reply. Each JPEG is decoded straight into its place, bottom row first. False
    /// with a reason when one of them can't be decoded or has another size than its place; then the canvas
    /// may hold part of it, and a whole frame has to be asked for.
    bool Draw(const StreamReply& reply, std::string& reason);

    bool IsEmpty() const { return fPixels.empty(); }
    bool HasSizeOf(const zRect& frame) const {
        return !IsEmpty() && Width() == frame.Width() && Height() == frame.Height();
    }
    int Width() const { return fFrame.Width(); } ///< Undefined while it is empty, as is the height.
    int Height() const { return fFrame.Height(); }
    int RowBytes() const { return Width() * kPixelBytes; }
    const uint8_t* Row(int y) const {
        return fPixels.data() + static_cast<size_t>(y) * static_cast<size_t>(RowBytes());
    }
    /// Where it lies on the server's screen.
    const zRect& Frame() const { return fFrame; }

  private:
    bool draw(const StreamReply::Picture& picture, std::string& reason);
    void resize(const zRect& frame);

    void* fDecoder; ///< Of TurboJPEG; null without memory.
    zRect fFrame;
    std::vector<uint8_t> fPixels;
};

} // namespace receiver
