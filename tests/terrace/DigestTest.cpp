#include <gtest/gtest.h>

#include <string>

#include "zBase64.h"
#include "zMD5.h"
#include "zResult.h"
#include "zSHA1.h"
#include "zString.h"

namespace {

std::string sha1_of(const std::string& text, unsigned int part) {
    SHA1Context context;
    SHA1Reset(&context);
    for (size_t at = 0; at < text.size(); at += part) {
        const std::string piece = text.substr(at, part);
        SHA1Input(&context, reinterpret_cast<const unsigned char*>(piece.data()),
                  static_cast<unsigned int>(piece.size()));
    }
    unsigned char digest[20];
    EXPECT_EQ(SHA1Result(&context, digest), 0);
    zString hex;
    for (const unsigned char byte : digest) {
        zString two;
        two.sprintf("%02x", byte);
        hex += two;
    }
    return std::string(hex);
}

} // namespace

// RFC 1321, appendix A.5.
TEST(MD5, PublishedVectors) {
    const struct {
        const char *text, *digest;
    } cases[] = {
        {"", "d41d8cd98f00b204e9800998ecf8427e"},
        {"a", "0cc175b9c0f1b6a831c399e269772661"},
        {"abc", "900150983cd24fb0d6963f7d28e17f72"},
        {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
        {"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
        {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789",
         "d174ab98d277d9f5a5611c2c9f419d9f"},
        {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
         "57edf4a22be3c955ac49da2e2107b67a"},
    };
    for (const auto& c : cases) {
        zString hex;
        zMD5String(hex, c.text);
        EXPECT_STREQ(hex, c.digest);
    }
    char out[33];
    EXPECT_EQ(md5_make_hash_return_hex(nullptr, 0, out), result::kBadArgument);
}

// RFC 3174, section 7.3, with the input cut into pieces of every size.
TEST(SHA1, PublishedVectors) {
    std::string longText;
    for (int i = 0; i < 10; ++i)
        longText += "0123456701234567012345670123456701234567012345670123456701234567";
    for (unsigned int part = 1; part <= 130; ++part) {
        EXPECT_EQ(sha1_of("abc", part), "a9993e364706816aba3e25717850c26c9cd0d89d");
        EXPECT_EQ(sha1_of("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq", part),
                  "84983e441c3bd26ebaae4aa1f95129e5e54670f1");
        EXPECT_EQ(sha1_of(longText, part), "dea356a2cddd90c7a7ecedc5ebb563934f460452");
    }
    EXPECT_EQ(sha1_of(std::string(1'000'000, 'a'), 4096), "34aa973cd4c4daa4f61eeb2bdbad27316534016f");
    SHA1Context context;
    unsigned char digest[20];
    SHA1Reset(&context);
    SHA1Result(&context, digest);
    EXPECT_EQ(SHA1Input(&context, digest, 1), result::kFailure) << "nothing follows the result";
}

// RFC 4648, section 10.
TEST(Base64, PublishedVectorsBothWays) {
    const struct {
        const char *plain, *coded;
    } cases[] = {{"", ""},
                 {"f", "Zg=="},
                 {"fo", "Zm8="},
                 {"foo", "Zm9v"},
                 {"foob", "Zm9vYg=="},
                 {"fooba", "Zm9vYmE="},
                 {"foobar", "Zm9vYmFy"}};
    for (const auto& c : cases) {
        const auto size = static_cast<int>(std::string(c.plain).size());
        std::string coded(static_cast<size_t>(Base64encode_len(size)), '#');
        EXPECT_EQ(Base64encode(coded.data(), c.plain, size), Base64encode_len(size));
        EXPECT_STREQ(coded.c_str(), c.coded);
        EXPECT_EQ(Base64decode_len(c.coded), size + 1);
        std::string plain(static_cast<size_t>(Base64decode_len(c.coded)), '#');
        EXPECT_EQ(Base64decode(plain.data(), c.coded), size);
        EXPECT_STREQ(plain.c_str(), c.plain);
    }
    char out[8];
    EXPECT_EQ(Base64decode(out, "Zm9v*Zm9v"), 3) << "stops outside the alphabet";
}
