#include <gtest/gtest.h>

#include <string>

#include "zString.h"

TEST(String, NoTextAndEmptyTextAreTheSameValue) {
    const zString none;
    EXPECT_EQ(none, zString("", kWholeText));
    EXPECT_EQ(none, static_cast<const char*>(nullptr));
    EXPECT_STREQ(none, "");
}

TEST(String, AssignsAndAppendsPartsOfItself) {
    zString text("one two");
    text = text.FindSubString("two");
    text += text;
    EXPECT_STREQ(text, "twotwo");
    text.sprintf("<%s|%d>", static_cast<const char*>(text), 7);
    text.Prepend("ab", 1).AddToEnd("xyz", 2);
    EXPECT_STREQ(text, "a<twotwo|7>xy");
}

TEST(String, ReadsBytesAndEndsWithinTheText) {
    const zString text("banana");
    EXPECT_EQ(text[1'000'000], 0);
    EXPECT_STREQ(text.Left(0), "");
    EXPECT_STREQ(text.Right(2), "na");
    EXPECT_STREQ(text.Right(100), "banana");
    EXPECT_STREQ(text.FindNthChar(2, 'a'), "ana");
    EXPECT_EQ(text.FindNthChar(4, 'a'), nullptr);
}

TEST(String, StartsWithFindsTheTextAnywhereAndEndsWithAtTheEndOnly) {
    EXPECT_TRUE(zString("abc").StartsWith("b"));
    EXPECT_FALSE(zString("abc").StartsWith("d"));
    EXPECT_TRUE(zString("abab").EndsWith("ab"));
    EXPECT_FALSE(zString("abc").EndsWith("ab"));
    EXPECT_FALSE(zString("b").EndsWith("ab"));
}

TEST(String, CutsAtSeparators) {
    zString text("a--b--c");
    zString rest;
    text.SplitAtFirst(&rest, "--");
    EXPECT_STREQ(text, "a");
    EXPECT_STREQ(rest, "b--c");
    rest.SplitAtFirst(&text, ";");
    EXPECT_STREQ(text, "");
    rest.TruncateAt("--");
    EXPECT_STREQ(rest, "b");
}

TEST(String, ReplacesWithShorterEqualAndLongerTexts) {
    const struct {
        const char *text, *from, *to, *expected;
        int count;
    } cases[] = {
        {"aXbXc", "X", "", "abc", 2}, {"aXbXc", "X", "y", "aybyc", 2}, {"aXbXc", "X", "XX", "aXXbXXc", 2},
        {"aaa", "aa", "b", "ba", 1},  {"abc", "", "x", "abc", 0},      {"abc", "d", "x", "abc", 0},
        {"", "a", "b", "", 0},
    };
    for (const auto& c : cases) {
        zString text(c.text);
        EXPECT_EQ(text.ReplaceString(c.from, c.to), c.count) << c.text;
        EXPECT_STREQ(text, c.expected);
    }
}

// Stored texts were trimmed this way.
TEST(String, TrimLosesTheLastCharacterWhenNothingIsToDropInFront) {
    const std::pair<const char*, const char*> cases[] = {
        {"abc", "ab"}, {" abc", "abc"}, {"  abc  ", "abc"}, {" ", ""}, {"", ""}};
    for (const auto& [before, after] : cases) {
        zString text(before);
        text.LRTrim(" ");
        EXPECT_STREQ(text, after) << '"' << before << '"';
    }
}

TEST(String, RemovesTheLastCharacterWhole) {
    for (const auto& [before, after] :
         {std::pair{"a\xE2\x82\xAC", "a"}, {"ab", "a"}, {"", ""}, {"\x82\xAC", ""}}) {
        zString text(before);
        text.RemoveLastGlyph();
        EXPECT_STREQ(text, after);
    }
}

TEST(String, EscapesAreNotDoubled) {
    zString text;
    EXPECT_EQ(text.ToCEscapes("a\tb\nc\\"), 0);
    EXPECT_STREQ(text, "a\\tb\\nc\\");
    EXPECT_EQ(text.FromCEscapes("\\N\\T\\x\\"), 0);
    EXPECT_STREQ(text, "\n\t\\x\\");
}

TEST(String, FourCharacterCodesPackFirstCharacterOnTop) {
    unsigned int code = 1;
    zString("ab").Get4CCCC(&code);
    EXPECT_EQ(code, 0x61620000U);
    char out[5];
    EXPECT_EQ(zString::Set4CCCC(out, 0x78546167), 0);
    EXPECT_STREQ(out, "xTag");
    EXPECT_EQ(zString::Set4CCCC(out, 0x61620000), -1) << "not all can be printed";
}

TEST(String, NumbersAndChecksum) {
    EXPECT_EQ(zString("4294967295").AsInt32(), -1);
    zString text;
    text.SetUInt32(255, 16);
    EXPECT_STREQ(text, "ff");
    EXPECT_EQ(zString("a").Checksum(), 0);
    EXPECT_EQ(zString("abcde").Checksum(), 0x6261 ^ 0x6463);
}

TEST(String, KnowsMoreThanAscii) {
    zString text("\xC3\x9F \xC3\xA9");
    text.ToUpper();
    EXPECT_STREQ(text, "SS \xC3\x89");
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
    text = "zz1";
    text.TeanDecode("key");
    EXPECT_EQ(text.Length(), 1U) << "no hexadecimal digits";
}
