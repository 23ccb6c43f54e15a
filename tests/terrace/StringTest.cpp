#include <gtest/gtest.h>

#include <string>

#include "zString.h"

TEST(String, AssignsAndAppendsPartsOfItself) {
    zString text("one two");
    text = text.FindSubString("two");
    text += text;
    EXPECT_STREQ(text, "twotwo");
    text.sprintf("<%s|%d>", static_cast<const char*>(text), 7);
    text.Prepend("ab", 1).AddToEnd("xyz", 2);
    EXPECT_STREQ(text, "a<twotwo|7>xy");
}

TEST(String, ReadsAndCutsWithinTheText) {
    EXPECT_EQ(zString(), static_cast<const char*>(nullptr));
    zString text("banana");
    EXPECT_EQ(text[1'000'000], 0);
    EXPECT_STREQ(text.Right(100), "banana");
    EXPECT_EQ(text.FindNthChar(4, 'a'), nullptr);
    EXPECT_TRUE(text.StartsWith("nan")) << "it may stand anywhere";
    EXPECT_FALSE(text.EndsWith("nan"));
    EXPECT_FALSE(text.EndsWith("a banana"));
    zString rest;
    text.SplitAtFirst(&rest, "an");
    EXPECT_STREQ(text, "b");
    EXPECT_STREQ(rest, "ana");
}

TEST(String, ReplacesWithShorterEqualAndLongerTexts) {
    const struct {
        const char *text, *from, *to, *expected;
        int count;
    } cases[] = {
        {"aXbXc", "X", "", "abc", 2}, {"aXbXc", "X", "y", "aybyc", 2}, {"aXbXc", "X", "XX", "aXXbXXc", 2},
        {"aaa", "aa", "b", "ba", 1},  {"abc", "", "x", "abc", 0},
    };
    for (const auto& c : cases) {
        zString text(c.text);
        EXPECT_EQ(text.ReplaceString(c.from, c.to), c.count) << c.text;
        EXPECT_STREQ(text, c.expected);
    }
}

TEST(String, ChangesInPlace) {
    // Stored texts were trimmed this way: the last character goes where nothing is to drop in front.
    const auto trim = [](zString& text) { text.LRTrim(" "); };
    const auto shorten = [](zString& text) { text.RemoveLastGlyph(); };
    const auto raise = [](zString& text) { text.ToUpper(); };
    const auto escape = [](zString& text) { text.ToCEscapes(static_cast<const char*>(text)); };
    const auto read = [](zString& text) { text.FromCEscapes(static_cast<const char*>(text)); };
    const struct {
        void (*change)(zString&);
        const char *before, *after;
    } cases[] = {
        {trim, "abc", "ab"},
        {trim, "  abc  ", "abc"},
        {trim, " ", ""},
        {shorten, "a\xE2\x82\xAC", "a"},
        {shorten, "ab", "a"},
        {shorten, "\x82\xAC", ""},
        {raise, "\xC3\x9F \xC3\xA9", "SS \xC3\x89"},
        {escape, "a\tb\nc\\", "a\\tb\\nc\\"}, // no backslash is doubled
        {read, "\\N\\T\\x\\", "\n\t\\x\\"},
    };
    for (const auto& c : cases) {
        zString text(c.before);
        c.change(text);
        EXPECT_STREQ(text, c.after) << '"' << c.before << '"';
    }
}

TEST(String, PacksCodesAndChecksums) {
    unsigned int code = 1;
    zString("ab").Get4CCCC(&code);
    EXPECT_EQ(code, 0x61620000U) << "the first character is on top";
    char out[5];
    EXPECT_EQ(zString::Set4CCCC(out, 0x78546167), 0);
    EXPECT_STREQ(out, "xTag");
    EXPECT_EQ(zString("abcde").Checksum(), 0x6261 ^ 0x6463);
    EXPECT_EQ(zString("4294967295").AsInt32(), -1);
}

TEST(String, TakesWideTexts) {
    const unsigned short units[] = {'a', 0x20AC, 0xD83D, 0xDE00, 0};
    EXPECT_STREQ(zString(units, -1), "a\xE2\x82\xAC\xF0\x9F\x98\x80");
    EXPECT_STREQ(zString(units + 2, 1), "") << "half a pair";
}

TEST(String, CipherTextIsHexadecimalAndComesBack) {
    zString text("longer than one block");
    text.TeanEncode("key");
    EXPECT_EQ(text.Length(), 42U);
    EXPECT_EQ(std::string(text).find_first_not_of("0123456789ABCDEF"), std::string::npos);
    text.TeanDecode("key");
    EXPECT_STREQ(text, "longer than one block");
}
