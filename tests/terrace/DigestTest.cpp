#include <gtest/gtest.h>

#include <string>

#include "zBase64.h"
#include "zMD5.h"
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
    std::string hex;
    for (const unsigned char byte : digest)
        for (const int nibble : {byte >> 4, byte & 15})
            hex += "0123456789abcdef"[nibble];
    return hex;
}

} // namespace

// RFC 1321, appendix A.5.
TEST(MD5, PublishedVectors) {
    const std::pair<const char*, const char*> cases[] = {
        {"", "d41d8cd98f00b204e9800998ecf8427e"},
        {"abc", "900150983cd24fb0d6963f7d28e17f72"},
        {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
         "57edf4a22be3c955ac49da2e2107b67a"},
    };
    for (const auto& [text, digest] : cases) {
        zString hex;
        zMD5String(hex, text);
        EXPECT_STREQ(hex, digest);
    }
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
}

TEST(Base64, PublishedVectorsBothWays) {
    const std::pair<std::string, std::string> cases[] = {
        {"", ""}, {"f", "Zg=="}, {"fo", "Zm8="}, {"foo", "Zm9v"}, {"foob", "Zm9vYg=="}};
    char out[16];
    for (const auto& [plain, coded] : cases) {
        const auto size = static_cast<int>(plain.size());
        EXPECT_EQ(Base64encode(out, plain.c_str(), size), Base64encode_len(size));
        EXPECT_EQ(out, coded);
        EXPECT_EQ(Base64decode_len(coded.c_str()), size + 1);
        EXPECT_EQ(Base64decode(out, coded.c_str()), size);
        EXPECT_EQ(out, plain);
    }
    EXPECT_EQ(Base64decode(out, "Zm9v*Zm9v"), 3) << "stops outside the alphabet";
}
