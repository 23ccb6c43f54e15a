#include <gtest/gtest.h>

#include <vector>

#include "zBabel.h"
#include "zBuffer.h"
#include "zCFString.h"
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
    zString text;
    EXPECT_EQ(zBabel::Convert(&text, zBabel::kISOLatin1, "a\xE3\x83\x86z", -1, zBabel::kUTF8, nullptr), -1);
    EXPECT_EQ(zBabel::Convert(&text, zBabel::kISOLatin1, "a\xE3\x83\x86z", -1, zBabel::kUTF8, "?"), 0);
    EXPECT_STREQ(text, "a?z");
    EXPECT_EQ(zBabel::Convert(&text, zBabel::kMacRoman, "a\xE2\x80\x8Bz", -1, zBabel::kUTF8, nullptr), -1)
        << "an invisible character is one too";
    EXPECT_EQ(zBabel::Convert(&text, zBabel::kMacRoman, "a\xE2\x80\x8Bz", -1, zBabel::kUTF8, "?"), 0);
    EXPECT_STREQ(text, "a?z");
    EXPECT_EQ(zBabel::Convert(&text, zBabel::kMacJapanese, "\xC3\xA9", -1, zBabel::kUTF8, "_"), 0);
    EXPECT_STREQ(text, "_");
    EXPECT_EQ(zBabel::Convert(&text, zBabel::kISOLatin1, "\xFF", -1, zBabel::kUTF8, "?"), -1) << "no UTF-8";
    EXPECT_EQ(zBabel::Convert(&text, zBabel::kISOLatin1, "", -1, zBabel::kUTF8, nullptr), -1);
    EXPECT_EQ(zBabel::Convert(&text, 1, "a", -1, zBabel::kUTF8, nullptr), -1);
    EXPECT_EQ(zBabel::Convert(&text, 1, "\xFFxy", 2, 1, nullptr), 0) << "equal codes copy, even unknown ones";
    EXPECT_STREQ(text, "\xFFx");
}

TEST(Babel, WideTextCarriesAZeroUnit) {
    zBuffer wide;
    EXPECT_EQ(zBabel::ConvertToWide(wide, "a\xF0\x9F\x98\x80", -1, zBabel::kUTF8), 0);
    ASSERT_EQ(wide.Size(), 8U);
    const auto* units = reinterpret_cast<const unsigned short*>(wide.Data());
    EXPECT_EQ(units[1], 0xD83D);
    EXPECT_EQ(units[3], 0);
    zString back("old");
    EXPECT_EQ(zBabel::ConvertWideToUTF8(back, units, 1), 0);
    EXPECT_STREQ(back, "a");
    EXPECT_EQ(zBabel::ConvertWideToUTF8(back, units, 0), 0);
    EXPECT_STREQ(back, "");
    const std::vector<unsigned short> endless(zBabel::kWideLimit + 100, 'x');
    EXPECT_EQ(zBabel::ConvertWideToUTF8(back, endless.data(), -1), 0);
    EXPECT_EQ(back.Length(), 409601U);
}

TEST(Babel, ComparesByItsFlags) {
    constexpr unsigned int kCase = zBabel::kIgnoreCase;
    constexpr unsigned int kMarks = zBabel::kIgnoreDiacritics;
    constexpr unsigned int kIn = zBabel::kAnywhere;
    const struct {
        const char *a, *b;
        unsigned int flags;
        int expected;
    } cases[] = {
        {nullptr, nullptr, 0, 0},
        {"a", nullptr, kCase, 1},
        {"hello", "ell", kIn, 0},
        {"hello", "Ell", kIn, 1},
        {"\xC3\x89t\xC3\xA9", "\xC3\xA9T\xC3\x89", kCase, 0},
        {"\xC3\xA9", "e", kCase, -1},
        {"\xC3\xA9", "e", kMarks, 0},
        {"\xC3\x89", "e", kMarks, -1},
        {"\xC3\x89", "e", kCase | kMarks, 0},
        {"e\xCC\x81", "\xC3\xA9", kCase, 0},
        {"\xEF\xBC\xA1", "A", kCase, 0},
        {"The R\xC3\xA9sum\xC3\xA9 File", "RESUME", kIn | kCase | kMarks, 0},
        {"short", "longer text", kIn | kCase, -1},
        {"\xFF", "a", kCase, 1},
    };
    for (const auto& c : cases)
        EXPECT_EQ(zBabel::Compare(c.a, c.b, c.flags), c.expected)
            << (c.a ? c.a : "null") << " / " << (c.b ? c.b : "null") << " / " << c.flags;
    EXPECT_LT(zBabel::Compare("a", "b", 0), 0);
}

TEST(CFString, HoldsOneText) {
    zCFString object(nullptr);
    zString text("old");
    zCFString::Convert(text, object.Ref());
    EXPECT_STREQ(text, "");
    object.Set("\xE2\x82\xAC");
    object.Set(nullptr);
    zCFString::Convert(text, object.Ref(nullptr));
    EXPECT_STREQ(text, "\xE2\x82\xAC");
    const unsigned short loneHalf[] = {0xD83D};
    zCFString::Convert(text, loneHalf, 1);
    EXPECT_STREQ(text, "");
}
