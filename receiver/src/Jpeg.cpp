#include "Jpeg.h"

#include <turbojpeg.h>

namespace receiver {

namespace {

constexpr int kFullColourQuality = 90;

} // namespace

JpegEncoder::JpegEncoder() : fEncoder(tjInitCompress()), fTransformer(tjInitTransform()) {}

JpegEncoder::~JpegEncoder() {
    if (fEncoder)
        tjDestroy(fEncoder);
    if (fTransformer)
        tjDestroy(fTransformer);
}

bool JpegEncoder::Encode(const uint8_t* pixels, int width, int height, int rowBytes, int quality,
                         std::vector<uint8_t>& out) {
    const int subsampling = quality >= kFullColourQuality ? TJSAMP_444 : TJSAMP_420;
    const unsigned long bound = tjBufSize(width, height, subsampling);
    if (!fEncoder || bound == static_cast<unsigned long>(-1))
        return false;
    out.resize(bound);
    unsigned char* data = out.data();
    unsigned long size = bound;
    if (tjCompress2(fEncoder, pixels, width, rowBytes, height, TJPF_BGRX, &data, &size, subsampling, quality,
                    TJFLAG_NOREALLOC) != 0)
        return false;
    out.resize(size);
    return true;
}

bool JpegEncoder::Flip(std::span<const uint8_t> jpeg, std::vector<uint8_t>& out) {
    int width = 0, height = 0, subsampling = 0, colours = 0;
    if (!fTransformer ||
        tjDecompressHeader3(fTransformer, jpeg.data(), jpeg.size(), &width, &height, &subsampling,
                            &colours) != 0 ||
        subsampling < 0)
        return false;
    // The block rows that the encoding has beyond the picture would otherwise stay where they are.
    if (height % tjMCUHeight[subsampling] != 0)
        return false;
    const unsigned long bound = tjBufSize(width, height, subsampling);
    out.resize(bound);
    unsigned char* data = out.data();
    unsigned long size = bound;
    tjtransform flip = {};
    flip.op = TJXOP_VFLIP;
    flip.options = TJXOPT_PERFECT;
    if (tjTransform(fTransformer, jpeg.data(), jpeg.size(), 1, &data, &size, &flip, TJFLAG_NOREALLOC) != 0)
        return false;
    out.resize(size);
    return true;
}

} // namespace receiver
