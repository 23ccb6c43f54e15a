#include "zBase64.h"

#include <array>
#include <cstdint>

namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr std::array<int8_t, 256> make_values() {
    std::array<int8_t, 256> values{};
    values.fill(-1);
    for (int8_t i = 0; i < 64; ++i)
        values[static_cast<unsigned char>(kAlphabet[i])] = i;
    return values;
}

constexpr std::array<int8_t, 256> kValues = make_values();

// -1 for a character outside the alphabet.
int value_of(char c) {
    return kValues[static_cast<unsigned char>(c)];
}

} // namespace

int Base64encode_len(int size) {
    return (size + 2) / 3 * 4 + 1;
}

int Base64encode(char* out, const char* in, int size) {
    char* at = out;
    for (int i = 0; i < size; i += 3) {
        uint32_t group = 0;
        for (int j = 0; j < 3; ++j)
            group = group << 8 | (i + j < size ? static_cast<unsigned char>(in[i + j]) : 0U);
        *at++ = kAlphabet[group >> 18];
        *at++ = kAlphabet[group >> 12 & 63];
        *at++ = i + 1 < size ? kAlphabet[group >> 6 & 63] : '=';
        *at++ = i + 2 < size ? kAlphabet[group & 63] : '=';
    }
    *at++ = 0;
    return static_cast<int>(at - out);
}

int Base64decode_len(const char* in) {
    int count = 0;
    while (value_of(in[count]) >= 0)
        ++count;
    return static_cast<int>(static_cast<int64_t>(count) * 3 / 4) + 1;
}

int Base64decode(char* out, const char* in) {
    char* at = out;
    uint32_t bits = 0;
    int pending = 0;
    for (; value_of(*in) >= 0; ++in) {
        bits = bits << 6 | static_cast<uint32_t>(value_of(*in));
        pending += 6;
        if (pending >= 8) {
            pending -= 8;
            *at++ = static_cast<char>(bits >> pending & 0xFF);
        }
    }
    *at = 0;
    return static_cast<int>(at - out);
}
