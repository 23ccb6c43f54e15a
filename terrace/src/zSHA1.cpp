#include "zSHA1.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>

#include "zResult.h"

namespace {

constexpr size_t kBlockSize = 64;
constexpr size_t kLengthOffset = 56;

uint32_t load_big_endian(const unsigned char* bytes) {
    return static_cast<uint32_t>(bytes[0]) << 24 | static_cast<uint32_t>(bytes[1]) << 16 |
           static_cast<uint32_t>(bytes[2]) << 8 | bytes[3];
}

void store_big_endian(unsigned char* bytes, uint64_t value, int count) {
    for (int i = 0; i < count; ++i)
        bytes[i] = static_cast<unsigned char>(value >> (8 * (count - 1 - i)) & 0xFF);
}

// Function and constant of a step, RFC 3174, section 5.
uint32_t mix(int step, uint32_t b, uint32_t c, uint32_t d) {
    if (step < 20)
        return ((b & c) | (~b & d)) + 0x5A827999;
    if (step < 40)
        return (b ^ c ^ d) + 0x6ED9EBA1;
    if (step < 60)
        return ((b & c) | (b & d) | (c & d)) + 0x8F1BBCDC;
    return (b ^ c ^ d) + 0xCA62C1D6;
}

void transform(uint32_t state[5], const unsigned char* block) {
    uint32_t words[80];
    for (int i = 0; i < 16; ++i)
        words[i] = load_big_endian(block + 4 * i);
    for (int i = 16; i < 80; ++i)
        words[i] = std::rotl(words[i - 3] ^ words[i - 8] ^ words[i - 14] ^ words[i - 16], 1);

    uint32_t a = state[0], b = state[1], c = state[2], d = state[3], e = state[4];
    for (int i = 0; i < 80; ++i) {
        const uint32_t next = std::rotl(a, 5) + mix(i, b, c, d) + e + words[i];
        e = d;
        d = c;
        c = std::rotl(b, 30);
        b = a;
        a = next;
    }
    state[0] += a;
    state[1] += b;
    state[2] += c;
    state[3] += d;
    state[4] += e;
}

void take(SHA1Context* context, const unsigned char* data, size_t size) {
    while (size > 0) {
        const size_t used = context->length % kBlockSize;
        const size_t taken = std::min(size, kBlockSize - used);
        std::memcpy(context->block + used, data, taken);
        context->length += taken;
        data += taken;
        size -= taken;
        if (used + taken == kBlockSize)
            transform(context->state, context->block);
    }
}

void finish(SHA1Context* context) {
    static constexpr unsigned char kPadding[kBlockSize] = {0x80};
    unsigned char bitLength[8];
    store_big_endian(bitLength, context->length * 8, sizeof bitLength);
    const size_t used = context->length % kBlockSize;
    take(context, kPadding, (used < kLengthOffset ? kLengthOffset : kBlockSize + kLengthOffset) - used);
    take(context, bitLength, sizeof bitLength);
    context->done = true;
}

} // namespace

int SHA1Reset(SHA1Context* context) {
    if (!context)
        return result::kBadArgument;
    *context = {{0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476, 0xC3D2E1F0}, 0, {}, false};
    return result::kOk;
}

int SHA1Input(SHA1Context* context, const unsigned char* data, unsigned int size) {
    if (!context || (!data && size > 0))
        return result::kBadArgument;
    if (context->done)
        return result::kFailure;
    take(context, data, size);
    return result::kOk;
}

int SHA1Result(SHA1Context* context, unsigned char digest[20]) {
    if (!context || !digest)
        return result::kBadArgument;
    if (!context->done)
        finish(context);
    for (int i = 0; i < 5; ++i)
        store_big_endian(digest + 4 * i, context->state[i], 4);
    return result::kOk;
}
