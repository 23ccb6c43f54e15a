#include "zMD5.h"

#include <algorithm>
#include <bit>
#include <cstdio>
#include <cstring>

#include "zResult.h"
#include "zString.h"

namespace {

constexpr size_t kBlockSize = 64;
constexpr size_t kLengthOffset = 56;
constexpr int kDigestSize = 16;

// floor(2^32 * |sin(i + 1)|), RFC 1321, section 3.4.
constexpr uint32_t kSines[64] = {
    0xd76aa478, 0xe8c7b756, 0x242070db, 0xc1bdceee, 0xf57c0faf, 0x4787c62a, 0xa8304613, 0xfd469501,
    0x698098d8, 0x8b44f7af, 0xffff5bb1, 0x895cd7be, 0x6b901122, 0xfd987193, 0xa679438e, 0x49b40821,
    0xf61e2562, 0xc040b340, 0x265e5a51, 0xe9b6c7aa, 0xd62f105d, 0x02441453, 0xd8a1e681, 0xe7d3fbc8,
    0x21e1cde6, 0xc33707d6, 0xf4d50d87, 0x455a14ed, 0xa9e3e905, 0xfcefa3f8, 0x676f02d9, 0x8d2a4c8a,
    0xfffa3942, 0x8771f681, 0x6d9d6122, 0xfde5380c, 0xa4beea44, 0x4bdecfa9, 0xf6bb4b60, 0xbebfbc70,
    0x289b7ec6, 0xeaa127fa, 0xd4ef3085, 0x04881d05, 0xd9d4d039, 0xe6db99e5, 0x1fa27cf8, 0xc4ac5665,
    0xf4292244, 0x432aff97, 0xab9423a7, 0xfc93a039, 0x655b59c3, 0x8f0ccc92, 0xffeff47d, 0x85845dd1,
    0x6fa87e4f, 0xfe2ce6e0, 0xa3014314, 0x4e0811a1, 0xf7537e82, 0xbd3af235, 0x2ad7d2bb, 0xeb86d391,
};

// One row for each of the four rounds; a step uses column step modulo 4.
constexpr int kShifts[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};

uint32_t load_little_endian(const unsigned char* bytes) {
    return bytes[0] | static_cast<uint32_t>(bytes[1]) << 8 | static_cast<uint32_t>(bytes[2]) << 16 |
           static_cast<uint32_t>(bytes[3]) << 24;
}

void store_little_endian(unsigned char* bytes, uint64_t value, int count) {
    for (int i = 0; i < count; ++i)
        bytes[i] = static_cast<unsigned char>(value >> (8 * i) & 0xFF);
}

struct Step {
    uint32_t mixed;
    int word; ///< Index of the block's word that the step adds.
};

Step mix(int step, uint32_t b, uint32_t c, uint32_t d) {
    switch (step / 16) {
    case 0:
        return {(b & c) | (~b & d), step};
    case 1:
        return {(d & b) | (~d & c), (5 * step + 1) % 16};
    case 2:
        return {b ^ c ^ d, (3 * step + 5) % 16};
    default:
        return {c ^ (b | ~d), 7 * step % 16};
    }
}

void transform(uint32_t state[4], const unsigned char* block) {
    uint32_t a = state[0], b = state[1], c = state[2], d = state[3];
    for (int i = 0; i < 64; ++i) {
        const Step step = mix(i, b, c, d);
        const uint32_t sum = a + step.mixed + kSines[i] + load_little_endian(block + 4 * step.word);
        a = d;
        d = c;
        c = b;
        b += std::rotl(sum, kShifts[i / 16][i % 4]);
    }
    state[0] += a;
    state[1] += b;
    state[2] += c;
    state[3] += d;
}

} // namespace

void zMD5Init(zMD5Context* context) {
    *context = {{0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476}, 0, {}};
}

void zMD5Update(zMD5Context* context, const void* data, unsigned int size) {
    const auto* bytes = static_cast<const unsigned char*>(data);
    while (size > 0) {
        const size_t used = context->length % kBlockSize;
        const size_t taken = std::min<size_t>(size, kBlockSize - used);
        std::memcpy(context->block + used, bytes, taken);
        context->length += taken;
        bytes += taken;
        size -= static_cast<unsigned int>(taken);
        if (used + taken == kBlockSize)
            transform(context->state, context->block);
    }
}

void zMD5Final(unsigned char digest[16], zMD5Context* context) {
    static constexpr unsigned char kPadding[kBlockSize] = {0x80};
    unsigned char bitLength[8];
    store_little_endian(bitLength, context->length * 8, sizeof bitLength);
    const size_t used = context->length % kBlockSize;
    const size_t padding = (used < kLengthOffset ? kLengthOffset : kBlockSize + kLengthOffset) - used;
    zMD5Update(context, kPadding, static_cast<unsigned int>(padding));
    zMD5Update(context, bitLength, sizeof bitLength);
    for (int i = 0; i < 4; ++i)
        store_little_endian(digest + 4 * i, context->state[i], 4);
}

void zMD5String(zString& out, const char* text) {
    md5_make_hash_return_hex(text ? text : "", text ? static_cast<unsigned int>(std::strlen(text)) : 0,
                             out.Preallocate(2 * kDigestSize));
}

int md5_make_hash_return_hex(const char* in, unsigned int length, char* out) {
    if (!in || !out)
        return result::kBadArgument;
    unsigned char digest[kDigestSize];
    zMD5Context context;
    zMD5Init(&context);
    zMD5Update(&context, in, length);
    zMD5Final(digest, &context);
    for (int i = 0; i < kDigestSize; ++i)
        std::snprintf(out + 2 * i, 3, "%02x", digest[i]);
    return result::kOk;
}
