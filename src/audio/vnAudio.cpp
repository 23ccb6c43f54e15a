#include "vnAudio.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "Host.h"
#include "vnAudio_mac.h"

namespace {

/// One conversion takes no more; at most about a second, so that a client that was away gets no flood.
constexpr uint32_t kMostFrames = 48000;

uint32_t sample_bytes(BUFFER_TYPE type) {
    return type == kBufferType_fl32 ? 4 : 2;
}

/// A block for free() with the record's samples; null when it has none.
unsigned char* copy_samples(const host::AudioBufferRecord& record, uint32_t byteCount) {
    auto* block = byteCount > 0 ? static_cast<unsigned char*>(std::malloc(byteCount)) : nullptr;
    if (block)
        std::memcpy(block, record.data[0], byteCount);
    return block;
}

} // namespace

vnAudio::vnAudio() = default;
vnAudio::~vnAudio() = default;

vnAudio* vnAudio::Factory() {
    return new vnAudio_mac;
}

bool vnAudio::ConvertAudioFrame(void* data, int size, BUFFER_TYPE type, int sampleRate, int channels,
                                unsigned char** out, int& outSize) {
    if (size < 1 || sampleRate < 1 || channels < 1)
        return false;
    auto sourceChannels = static_cast<uint32_t>(channels);
    if (!fConverter) {
        fConverter = host::Host::Current().NewAudioConverter(
            {.sampleRate = static_cast<uint32_t>(sampleRate), .channels = sourceChannels});
        if (!fConverter)
            return false;
    }

    const uint64_t frameBytes = uint64_t{sample_bytes(type)} * sourceChannels;
    auto frames =
        static_cast<uint32_t>(std::min<uint64_t>(static_cast<uint64_t>(size) / frameBytes, kMostFrames));
    auto byteCount = static_cast<uint32_t>(frames * frameBytes);
    const host::AudioBufferRecord source{.sampleFormat = type,
                                         .data = &data,
                                         .byteCount = &byteCount,
                                         .framesOrRate = &frames,
                                         .channels = &sourceChannels};
    uint32_t wireRate = kWireRate;
    uint32_t wireChannels = kWireChannels;
    host::AudioBufferRecord wire{
        .sampleFormat = kBufferType_sowt, .framesOrRate = &wireRate, .channels = &wireChannels};
    if (fConverter->Convert(source, wire) != 0)
        return false;

    const uint32_t wireBytes = wire.byteCount ? *wire.byteCount : 0;
    *out = copy_samples(wire, wireBytes);
    outSize = *out ? static_cast<int>(wireBytes) : 0;
    fConverter->FreeDataBuffers(wire);
    return true;
}
