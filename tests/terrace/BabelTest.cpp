#include <gtest/gtest.h>

#include <vector>

#include "zBabel.h"
#include "zBuffer.h"
#include "zString.h"

TEST(Babel, ConvertsBetweenTheFiveSets) {
    const struct {
        unsigned int set;
        const char *bytes, *utf8;
    } cases[] = {
        {zBabel::kISOLatin1, "\xE9", "\xC3\xA9"},         {zBabel::kWindowsLatin1, "\x80", "\xE2\x82\xAC"},
        {zBabel::kMacRoman, "\x8E", "\xC3\xA9"},          {zBabel::kMacJapanese, "\x83\x65", "\xE3\x83\x86"},
        {zBabel::kMacJapanese, "a\xB1", "a\xEF\xBD\xB1"},
    };
    for (const auto& c : cases) {
        zString text;
        EXPECT_EQ(zBabel::Convert(&text, zBabel::kUTF8, c.bytes, -1, c.set, nullptr), 0);
        EXPECT_STREQ(text, c.utf8);
        EXPECT_EQ(zBabel::Convert(&text, c.set, c.utf8, -1, zBabel::kUTF8, nullptr), 0);
        EXPECT_STREQ(text, c.bytes);
    }
}

TEST(Babel, UnmappableCharactersFailOrBecomeTheLossByte) {
    const struct {
        unsigned int set;
        const char *utf8, *loss, *expected; // A null expectation: fails.
    } cases[] = {
        {zBabel::kISOLatin1, "a\xE3\x83\x86z", "?", "a?z"},
        {zBabel::kMacRoman, "a\xE2\x80\x8Bz", nullptr, nullptr}, // an invisible character is one too
        {zBabel::kMacJapanese, "\xC3\xA9", "_", "_"},
        {zBabel::kISOLatin1, "\xFF", "?", nullptr},
        {1, "a", nullptr, nullptr},
    };
    for (const auto& c : cases) {
        zString text;
        EXPECT_EQ(zBabel::Convert(&text, c.set, c.utf8, -1, zBabel::kUTF8, c.loss), c.expected ? 0 : -1);
        EXPECT_TRUE(!c.expected || text == c.expected) << c.utf8;
    }
}

TEST(Babel, WideTextEndsAtItsZeroUnitOrItsLimit) {
    zBuffer wide;
    EXPECT_EQ(zBabel::ConvertToWide(wide, "a\xF0\x9F\x98\x80", -1, zBabel::kUTF8), 0);
    const auto* units = reinterpret_cast<const unsigned short*>(wide.Data());
    EXPECT_EQ(std::vector<unsigned short>(units, units + wide.Size() / 2),
              (std::vector<unsigned short>{'a', 0xD83D, 0xDE00, 0}));
    zString back;
    const std::vector<unsigned short> endless(zBabel::kWideLimit + 100, 'x');
    EXPECT_EQ(zBabel::ConvertWideToUTF8(back, endless.data(), -1), 0);
    EXPECT_EQ(back.Length(), 409601U);
}
