#include <gtest/gtest.h>

#include <string>

#include "zTean.h"

namespace {

std::string encoded(std::string text, const zTeanKey& key) {
    zTean::Encode(text.data(), text.size(), key);
    return text;
}

std::string decoded(std::string text, const zTeanKey& key) {
    zTean::Decode(text.data(), text.size(), key);
    return text;
}

} // namespace

TEST(Tean, EverySizeComesBackAndKeepsItsLength) {
    const zTeanKey key("a key of some length");
    for (size_t size = 1; size <= 41; ++size) {
        std::string text;
        for (size_t i = 0; i < size; ++i)
            text += static_cast<char>(i * 37 + size);
        const std::string secret = encoded(text, key);
        EXPECT_EQ(secret.size(), size);
        EXPECT_NE(secret, text);
        EXPECT_EQ(decoded(secret, key), text) << size;
    }
    EXPECT_EQ(encoded("0123456789", key).substr(0, 2), encoded("01234567abcdefgh", key).substr(0, 2))
        << "the last eight bytes cover a tail, the first block is enciphered alone up to them";
}

TEST(Tean, SixteenCharactersOfTheKeyCount) {
    const zTeanKey key("0123456789abcdef");
    EXPECT_EQ(encoded("12345678", zTeanKey("0123456789abcdefXYZ")), encoded("12345678", key));
    EXPECT_NE(encoded("12345678", zTeanKey("0123456789abcde")), encoded("12345678", key));
    EXPECT_EQ(encoded("1234567", zTeanKey()), encoded("1234567", key)) << "short texts do not depend on it";
}

// The working key is the given one, its halves enciphered with itself; a text of one block is enciphered
// twice.
TEST(Tean, TheKeyEnciphersItselfBeforeItIsUsed) {
    // "0123456789abcdef" and "blocktxt" as little-endian words.
    const uint32_t given[4] = {0x33323130, 0x37363534, 0x62613938, 0x66656463};
    uint32_t working[4];
    zTean::encode64(given, working, given);
    zTean::encode64(given + 2, working + 2, given);
    uint32_t block[2] = {0x636F6C62, 0x7478746B};
    for (int i = 0; i < 2; ++i)
        zTean::encode64(block, block, working);

    std::string expected;
    for (const uint32_t word : block)
        for (int shift = 0; shift < 32; shift += 8)
            expected += static_cast<char>(word >> shift & 0xFF);
    EXPECT_EQ(encoded("blocktxt", zTeanKey("0123456789abcdef")), expected);
}

// The round written out independently, with the order of keys as published for XTEA.
TEST(Tean, ABlockTakesSixtyOneRounds) {
    const uint32_t key[4] = {0x11111111, 0x22222222, 0x33333333, 0x44444444};
    uint32_t a = 0x01234567, b = 0x89ABCDEF;
    uint32_t sum = 0;
    for (int i = 0; i < 61; ++i) {
        a += ((b << 4 ^ b >> 5) + b) ^ (sum + key[sum % 4]);
        sum += 0x9E3779B9;
        b += ((a << 4 ^ a >> 5) + a) ^ (sum + key[(sum >> 11) % 4]);
    }
    EXPECT_EQ(sum, 0xB3380115);

    const uint32_t in[2] = {0x01234567, 0x89ABCDEF};
    uint32_t out[2];
    zTean::encode64(in, out, key);
    EXPECT_EQ(out[0], a);
    EXPECT_EQ(out[1], b);
    zTean::decode64(out, out, key);
    EXPECT_EQ(out[0], in[0]);
    EXPECT_EQ(out[1], in[1]);
}
