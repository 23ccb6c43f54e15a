#include "vnRPC_FrameEncoder.h"

#include "vnRPC_Call.h"
#include "vnRPC_Encoder.h"
#include "vnSnapshotBuffer.h"

vnRPC_FrameEncoder::vnRPC_FrameEncoder() = default;

vnRPC_FrameEncoder::~vnRPC_FrameEncoder() {
    if (fEncoded)
        fEncoded->Release();
}

bool vnRPC_FrameEncoder::CheckAndResize(const zRect& captured, vnSnapshotBuffer& frame) {
    if (fEncoded && vnRPC_SameSize(captured, fEncoderRect))
        return false;
    if (fEncoded)
        fEncoded->Release();
    fEncoderRect = captured;
    fEncoder.reset(vnRPC_Encoder::Factory(captured.Width(), captured.Height(), frame.RowBytes()));
    fEncoded = fEncoder->NewBuffer();
    return true;
}

void vnRPC_FrameEncoder::Encode(vnSnapshotBuffer& frame, uint32_t quality) {
    if (frame.Data() && frame.HoldsItsPixels() &&
        vnRPC_SameSize(zRect(frame.Width(), frame.Height()), fEncoderRect))
        fEncoder->EncodeJPEG(*fEncoded, frame.Data(), frame.Size(), quality);
}

vnEncoderBuffer* vnRPC_FrameEncoder::AddRefToPicture() {
    fEncoded->AddRef();
    return fEncoded;
}
