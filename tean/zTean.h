#pragma once

#include <cstddef>
#include <cstdint>

/// A key of 16 bytes.
class zTeanKey {
  public:
    /// All zero.
    zTeanKey() = default;
    /// At most 16 characters of the text, zeroes behind them. Null gives the zero key.
    explicit zTeanKey(const char* text);

    const unsigned char* Bytes() const { return fBytes; }

  private:
    unsigned char fBytes[16] = {};
};

/// A block cipher of the TEA family with the round structure of XTEA, over byte buffers in place and without
/// growth. It hides texts from a casual look; it is no protection against an attacker. Words are
/// little-endian on every machine.
class zTean {
  public:
    static void Encode(void* data, size_t size, const zTeanKey& key);
    static void Decode(void* data, size_t size, const zTeanKey& key);

    /// One block of two words, with four key words. `in` and `out` may be the same.
    static void encode64(const uint32_t in[2], uint32_t out[2], const uint32_t key[4]);
    static void decode64(const uint32_t in[2], uint32_t out[2], const uint32_t key[4]);
};
