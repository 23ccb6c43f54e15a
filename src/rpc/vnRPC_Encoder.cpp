#include "vnRPC_Encoder.h"

#include "Host.h"
#include "vnRPC_Encoder_mac.h"
#include "zString.h"

vnEncoderBuffer::vnEncoderBuffer() : fBlock(host::Host::Current().NewPictureBlock()) {}

vnEncoderBuffer::~vnEncoderBuffer() = default;

uint8_t* vnEncoderBuffer::Data() {
    return const_cast<uint8_t*>(fBlock->Data());
}

int vnEncoderBuffer::Size() {
    return static_cast<int>(fBlock->Size());
}

vnRPC_Encoder* vnRPC_Encoder::Factory(int width, int height, int rowBytes) {
    return new vnRPC_Encoder_mac(width, height, rowBytes);
}

uint32_t vnRPC_Encoder::QualityFromString(const char* word) {
    if (zString::strcasecmp(word, "low") == 0)
        return kQualityLow;
    if (zString::strcasecmp(word, "high") == 0)
        return kQualityHigh;
    return kQualityNormal;
}
