#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "zString.h"

TEST(String, NoTextAndEmptyTextAreTheSameValue) {
    const zString none;
    EXPECT_EQ(none, zString("", kWholeText));
    EXPECT_EQ(none, static_cast<const char*>(nullptr));
    EXPECT_STREQ(none, "");
    EXPECT_EQ(none.Checksum(), 0);
    EXPECT_FALSE(none < zString(""));
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
    const zString text("abc");
    EXPECT_EQ(text[3], 0);
    EXPECT_EQ(text[1'000'000], 0);
    EXPECT_STREQ(text.Left(0), "");
    EXPECT_STREQ(text.Left(2), "ab");
    EXPECT_STREQ(text.Right(0), "");
    EXPECT_STREQ(text.Right(2), "bc");
    EXPECT_STREQ(text.Right(100), "abc");
    const zString fruit("banana");
    EXPECT_STREQ(fruit.FindNthChar(2, 'a'), "ana");
    EXPECT_EQ(fruit.FindNthChar(4, 'a'), nullptr);
    EXPECT_EQ(fruit.FindSubString("", 6), nullptr);
}

TEST(String, StartsWithFindsTheTextAnywhereAndEndsWithAtTheEndOnly) {
    EXPECT_TRUE(zString("abc").StartsWith("b"));
    EXPECT_FALSE(zString("abc").StartsWith("d"));
    EXPECT_TRUE(zString("abab").EndsWith("ab"));
    EXPECT_FALSE(zString("abc").EndsWith("ab"));
    EXPECT_FALSE(zString("b").EndsWith("ab"));
    EXPECT_FALSE(zString().EndsWith(""));
}

TEST(String, CutsAtSeparators) {
    zString text("a--b--c");
    zString rest;
    text.SplitAtFirst(&rest, "--");
    EXPECT_STREQ(text, "a");
    EXPECT_STREQ(rest, "b--c");
    rest.SplitAtFirst(&text, ";");
    EXPECT_STREQ(text, "");
    for (int i = 0; i < 2; ++i) {
        rest.TruncateAt("--");
        EXPECT_STREQ(rest, "b");
    }
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
    char out[4];
    zString::LRTrim(out, "abcdef", sizeof out, " ");
    EXPECT_STREQ(out, "abc");
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
    text.FromCEscapes("a\\n", 2);
    EXPECT_STREQ(text, "a\\");
}

TEST(String, FourCharacterCodesPackFirstCharacterOnTop) {
    unsigned int code = 1;
    EXPECT_EQ(zString::Get4CCCC(&code, nullptr), 0);
    EXPECT_EQ(code, 0U);
    zString("ab").Get4CCCC(&code);
    EXPECT_EQ(code, 0x61620000U);
    const std::tuple<unsigned int, const char*, int> codes[] = {
        {0x61620000, "ab", -1}, {0x78546167, "xTag", 0}, {0x01020304, "\1\2\3\4", -1}};
    for (const auto& [packed, text, result] : codes) {
        char out[5];
        EXPECT_EQ(zString::Set4CCCC(out, packed), result);
        EXPECT_STREQ(out, text);
    }
}

TEST(String, NumbersAndChecksum) {
    EXPECT_EQ(zString("-12x").AsInt32(), -12);
    EXPECT_EQ(zString("4294967295").AsInt32(), -1);
    zString text;
    for (const auto& [base, expected] : {std::pair{16, "ff"}, {10, "255"}, {8, ""}}) {
        text.SetUInt32(255, base);
        EXPECT_STREQ(text, expected);
    }
    EXPECT_EQ(zString("a").Checksum(), 0);
    EXPECT_EQ(zString("abcde").Checksum(), 0x6261 ^ 0x6463);
}

TEST(String, ComparesWithAndWithoutCase) {
    EXPECT_TRUE(zString::string_equal("AbCx", "aBcy", 3));
    EXPECT_FALSE(zString::string_equal("AbCx", "aBcy", -1)) << "a negative length means all";
    EXPECT_NE(zString("A"), zString("a"));
    EXPECT_LT(zString("a"), zString("b"));
    EXPECT_GT(zString("b"), zString());
}

TEST(String, UpperCaseKnowsMoreThanAscii) {
    for (const auto& [before, after] :
         {std::pair{"\xC3\x9F \xC3\xA9", "SS \xC3\x89"}, {"bad \xFF", "bad \xFF"}}) {
        zString text(before);
        text.ToUpper();
        EXPECT_STREQ(text, after);
    }
}

TEST(String, WideTexts) {
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
