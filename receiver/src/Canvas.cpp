#include "Canvas.h"

#include <algorithm>

#include <turbojpeg.h>

namespace receiver {

Canvas::Canvas() : fDecoder(tjInitDecompress()) {}

Canvas::~Canvas() {
    if (fDecoder)
        tjDestroy(fDecoder);
}

bool Canvas::Draw(const StreamReply& reply, std::string& reason) {
    if (reply.pictures.empty())
        return true;
    resize(reply.frame);
    return std::all_of(reply.pictures.begin(), reply.pictures.end(),
                       [&](const StreamReply::Picture& picture) { return draw(picture, reason); });
}

bool Canvas::draw(const StreamReply::Picture& picture, std::string& reason) {
    const unsigned char* jpeg = picture.jpeg.data();
    const unsigned long size = picture.jpeg.size();
    const int width = picture.place.Width(), height = picture.place.Height();
    int jpegWidth = 0, jpegHeight = 0, subsampling = 0, colours = 0;
    if (!fDecoder ||
        tjDecompressHeader3(fDecoder, jpeg, size, &jpegWidth, &jpegHeight, &subsampling, &colours) != 0) {
        reason = "a picture of the reply is no JPEG";
        return false;
    }
    if (jpegWidth != width || jpegHeight != height) {
        reason = "a picture of the reply has another size than its place";
        return false;
    }
    const auto x = static_cast<size_t>(picture.place.left - fFrame.left);
    const auto y = static_cast<size_t>(picture.place.top - fFrame.top);
    uint8_t* corner = fPixels.data() + y * static_cast<size_t>(RowBytes()) + x * kPixelBytes;
    // A warning leaves a picture to look at, so what is cut short still shows its beginning.
    if (tjDecompress2(fDecoder, jpeg, size, corner, width, RowBytes(), height, TJPF_BGRX,
                      TJFLAG_BOTTOMUP | TJFLAG_LIMITSCANS) != 0 &&
        tjGetErrorCode(fDecoder) != TJERR_WARNING) {
        reason = "a picture of the reply can't be decoded";
        return false;
    }
    return true;
}

/// A frame of the same size that has moved shows the same.
void Canvas::resize(const zRect& frame) {
    if (!HasSizeOf(frame))
        fPixels.assign(static_cast<size_t>(frame.Width()) * static_cast<size_t>(frame.Height()) * kPixelBytes,
                       0);
    fFrame = frame;
}

} // namespace receiver
