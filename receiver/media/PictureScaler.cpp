#include "PictureScaler.h"

#include <algorithm>

extern "C" {
#include <libavutil/imgutils.h>
}

namespace receiver {

namespace {

constexpr int kUnity = 1 << 16; ///< Of contrast and saturation.

/// Chroma has one sample for two pixels each way.
int even(int64_t length) {
    return std::max(static_cast<int>(length) & ~1, 2);
}

/// A picture that is at most a pixel larger, as one of odd size, is cut off rather than scaled.
bool is_cut(int width, int height, const AVFrame& frame) {
    const int right = width - frame.width, bottom = height - frame.height;
    return right >= 0 && right <= 1 && bottom >= 0 && bottom <= 1;
}

void fill_black(AVFrame& frame) {
    ptrdiff_t rowBytes[4] = {frame.linesize[0], frame.linesize[1], frame.linesize[2], frame.linesize[3]};
    av_image_fill_black(frame.data, rowBytes, static_cast<AVPixelFormat>(frame.format), frame.color_range,
                        frame.width, frame.height);
}

} // namespace

PictureScaler::Place PictureScaler::fit(int width, int height, const AVFrame& frame) {
    Place place{0, 0, frame.width, frame.height};
    if (is_cut(width, height, frame))
        return place;
    if (int64_t{width} * frame.height > int64_t{height} * frame.width)
        place.height = std::min(even(int64_t{frame.width} * height / width), frame.height);
    else
        place.width = std::min(even(int64_t{frame.height} * width / height), frame.width);
    place.x = (frame.width - place.width) / 2 & ~1;
    place.y = (frame.height - place.height) / 2 & ~1;
    return place;
}

bool PictureScaler::prepare(int width, int height, AVFrame& frame) {
    if (width == fWidth && height == fHeight)
        return true;
    fPlace = fit(width, height, frame);
    const bool isScaled = !is_cut(width, height, frame);
    fSourceRows = isScaled ? height : fPlace.height;
    fScaler.reset(sws_getContext(isScaled ? width : fPlace.width, fSourceRows, AV_PIX_FMT_BGR0, fPlace.width,
                                 fPlace.height, static_cast<AVPixelFormat>(frame.format),
                                 isScaled ? SWS_BICUBIC | SWS_ACCURATE_RND : SWS_BILINEAR | SWS_ACCURATE_RND,
                                 nullptr, nullptr, nullptr));
    if (!fScaler)
        return false;
    const int* matrix =
        sws_getCoefficients(frame.colorspace == AVCOL_SPC_BT709 ? SWS_CS_ITU709 : SWS_CS_ITU601);
    sws_setColorspaceDetails(fScaler.get(), matrix, 1, matrix, 0, 0, kUnity, kUnity);
    fill_black(frame);
    fWidth = width;
    fHeight = height;
    return true;
}

bool PictureScaler::Draw(const uint8_t* pixels, int width, int height, int rowBytes, AVFrame& frame) {
    if (!prepare(width, height, frame))
        return false;
    const bool isPlanar = frame.format == AV_PIX_FMT_YUV420P;
    const int pixelBytes = isPlanar ? 1 : 4;
    uint8_t* planes[4] = {};
    for (int plane = 0; plane < (isPlanar ? 3 : 1); ++plane) {
        const int down = plane > 0 ? 1 : 0;
        planes[plane] = frame.data[plane] + ptrdiff_t{fPlace.y >> down} * frame.linesize[plane] +
                        ptrdiff_t{fPlace.x >> down} * pixelBytes;
    }
    const uint8_t* source[4] = {pixels};
    const int sourceRowBytes[4] = {rowBytes};
    sws_scale(fScaler.get(), source, sourceRowBytes, 0, fSourceRows, planes, frame.linesize);
    return true;
}

} // namespace receiver
