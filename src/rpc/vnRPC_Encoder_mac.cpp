#include "vnRPC_Encoder_mac.h"

#include "Host.h"

namespace {

int compression_quality(uint32_t tag) {
    switch (tag) {
    case vnRPC_Encoder::kQualityLow:
        return 256;
    case vnRPC_Encoder::kQualityHigh:
        return 768;
    default:
        return 512;
    }
}

} // namespace

vnRPC_Encoder_mac::vnRPC_Encoder_mac(int width, int height, int rowBytes)
    : fExporter(host::Host::Current().NewPictureExporter(width, height, rowBytes)) {}

vnRPC_Encoder_mac::~vnRPC_Encoder_mac() = default;

vnEncoderBuffer* vnRPC_Encoder_mac::NewBuffer() {
    return new vnEncoderBuffer;
}

int vnRPC_Encoder_mac::EncodeJPEG(vnEncoderBuffer& out, const void* pixels, int, uint32_t quality) {
    if (!fExporter || set_quality(quality) != 0 || set_output(out) != 0)
        return -1;
    if (pixels != fLastPixels) {
        fExporter->SetInputPixels(pixels);
        fLastPixels = pixels;
    }
    return fExporter->Export() == 0 ? 0 : -1;
}

int vnRPC_Encoder_mac::set_quality(uint32_t quality) {
    if (quality == fLastQuality)
        return 0;
    if (fExporter->SetCompressionQuality(compression_quality(quality)) != 0)
        return -1;
    fLastQuality = quality;
    return 0;
}

int vnRPC_Encoder_mac::set_output(vnEncoderBuffer& out) {
    host::PictureBlock* block = &out.Block();
    if (block == fLastOutput)
        return 0;
    if (fExporter->SetOutput(*block) != 0)
        return -1;
    fLastOutput = block;
    return 0;
}
