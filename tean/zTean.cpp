#include "zTean.h"

namespace {

constexpr uint32_t kDelta = 0x9E3779B9;
constexpr int kRounds = 61;
constexpr size_t kBlockSize = 8;

// What is too short for a block is only veiled.
constexpr unsigned char kShortMask[kBlockSize - 1] = {0x5D, 0xA3, 0x1E, 0xC8, 0x76, 0x3B, 0xE9};

struct KeyWords {
    uint32_t words[4];
};

using BlockCipher = void (*)(const uint32_t in[2], uint32_t out[2], const uint32_t key[4]);

uint32_t load(const unsigned char* bytes) {
    return bytes[0] | static_cast<uint32_t>(bytes[1]) << 8 | static_cast<uint32_t>(bytes[2]) << 16 |
           static_cast<uint32_t>(bytes[3]) << 24;
}

void store(unsigned char* bytes, uint32_t word) {
    for (int i = 0; i < 4; ++i)
        bytes[i] = static_cast<unsigned char>(word >> (8 * i) & 0xFF);
}

uint32_t mix(uint32_t v) {
    return ((v << 4) ^ (v >> 5)) + v;
}

void apply(BlockCipher cipher, unsigned char* bytes, const KeyWords& key) {
    uint32_t block[2] = {load(bytes), load(bytes + 4)};
    cipher(block, block, key.words);
    store(bytes, block[0]);
    store(bytes + 4, block[1]);
}

// The key enciphers its own two halves.
KeyWords working_key(const zTeanKey& key) {
    const unsigned char* bytes = key.Bytes();
    const KeyWords given{{load(bytes), load(bytes + 4), load(bytes + 8), load(bytes + 12)}};
    KeyWords working;
    zTean::encode64(given.words, working.words, given.words);
    zTean::encode64(given.words + 2, working.words + 2, given.words);
    return working;
}

void veil(unsigned char* bytes, size_t size) {
    for (size_t i = 0; i < size; ++i)
        bytes[i] ^= kShortMask[i];
}

} // namespace

zTeanKey::zTeanKey(const char* text) {
    for (size_t i = 0; text && i < sizeof fBytes && text[i]; ++i)
        fBytes[i] = static_cast<unsigned char>(text[i]);
}

void zTean::encode64(const uint32_t in[2], uint32_t out[2], const uint32_t key[4]) {
    uint32_t v0 = in[0], v1 = in[1], sum = 0;
    for (int round = 0; round < kRounds; ++round) {
        v0 += mix(v1) ^ (sum + key[sum & 3]);
        sum += kDelta;
        v1 += mix(v0) ^ (sum + key[sum >> 11 & 3]);
    }
    out[0] = v0;
    out[1] = v1;
}

void zTean::decode64(const uint32_t in[2], uint32_t out[2], const uint32_t key[4]) {
    uint32_t v0 = in[0], v1 = in[1], sum = kDelta * kRounds;
    for (int round = 0; round < kRounds; ++round) {
        v1 -= mix(v0) ^ (sum + key[sum >> 11 & 3]);
        sum -= kDelta;
        v0 -= mix(v1) ^ (sum + key[sum & 3]);
    }
    out[0] = v0;
    out[1] = v1;
}

// The last 8 bytes are enciphered once more in the end: so a tail that fills no block is covered as well.
void zTean::Encode(void* data, size_t size, const zTeanKey& key) {
    auto* bytes = static_cast<unsigned char*>(data);
    if (size < kBlockSize)
        return veil(bytes, size);
    const KeyWords working = working_key(key);
    for (size_t at = 0; at + kBlockSize <= size; at += kBlockSize)
        apply(encode64, bytes + at, working);
    apply(encode64, bytes + size - kBlockSize, working);
}

void zTean::Decode(void* data, size_t size, const zTeanKey& key) {
    auto* bytes = static_cast<unsigned char*>(data);
    if (size < kBlockSize)
        return veil(bytes, size);
    const KeyWords working = working_key(key);
    apply(decode64, bytes + size - kBlockSize, working);
    for (size_t at = 0; at + kBlockSize <= size; at += kBlockSize)
        apply(decode64, bytes + at, working);
}
