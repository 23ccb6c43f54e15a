#include <gtest/gtest.h>

#include <string>

#include "zCFString.h"
#include "zString.h"

TEST(String, NoTextAndEmptyTextAreTheSameValue) {
    const zString none;
    EXPECT_EQ(none, zString("", kWholeText));
    EXPECT_EQ(none, static_cast<const char*>(nullptr));
    EXPECT_STREQ(none, "");
    EXPECT_EQ(none.Length(), 0U);
    EXPECT_EQ(none.Checksum(), 0);
    EXPECT_EQ(zString(none), none);
    EXPECT_FALSE(none < zString(""));
}

TEST(String, AssignsAndAppendsPartsOfItself) {
    zString text("one two");
    text = text.FindSubString("two");
    EXPECT_STREQ(text, "two");
    text += text;
    EXPECT_STREQ(text, "twotwo");
    text.sprintf("<%s|%d>", static_cast<const char*>(text), 7);
    EXPECT_STREQ(text, "<twotwo|7>");
    text.Prepend("ab", 1).AddToEnd("xyz", 2);
    EXPECT_STREQ(text, "a<twotwo|7>xy");
    text = static_cast<const char*>(nullptr);
    EXPECT_TRUE(text.IsEmpty());
}

TEST(String, ReadsBytesAndEndsWithinTheText) {
    const zString text("abc");
    EXPECT_EQ(text[2], 'c');
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
    EXPECT_EQ(fruit.FindNthChar(0, 'a'), nullptr);
    EXPECT_EQ(fruit.FindSubString("", 6), nullptr);
}

TEST(String, StartsWithFindsTheTextAnywhere) {
    EXPECT_TRUE(zString("abc").StartsWith("b"));
    EXPECT_FALSE(zString("abc").StartsWith("d"));
    EXPECT_FALSE(zString().StartsWith(""));
}

TEST(String, EndsWithLooksAtTheEndOnly) {
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
    EXPECT_STREQ(rest, "b--c");
    zString path("x/y/z");
    path.TruncateAt("/");
    EXPECT_STREQ(path, "x/y");
    path.TruncateAt("?");
    EXPECT_STREQ(path, "x/y");
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
    zString text("a.b.c");
    EXPECT_EQ(text.ReplaceChar('.', '/'), 2);
    EXPECT_STREQ(text, "a/b/c");
}

// Stored texts were trimmed this way.
TEST(String, TrimLosesTheLastCharacterWhenNothingIsToDropInFront) {
    const struct {
        const char *text, *expected;
    } cases[] = {{"abc", "ab"}, {" abc", "abc"}, {"  abc  ", "abc"}, {" ", ""}, {"", ""}};
    for (const auto& c : cases) {
        zString text(c.text);
        text.LRTrim(" ");
        EXPECT_STREQ(text, c.expected) << '"' << c.text << '"';
    }
    char out[4];
    zString::LRTrim(out, " abc ", sizeof out, " ");
    EXPECT_STREQ(out, "abc");
    zString::LRTrim(out, "abcdef", sizeof out, " ");
    EXPECT_STREQ(out, "abc");
}

TEST(String, RemovesTheLastCharacterWhole) {
    const struct {
        const char *text, *expected;
    } cases[] = {{"a\xE2\x82\xAC", "a"}, {"ab", "a"}, {"", ""}, {"\x82\xAC", ""}};
    for (const auto& c : cases) {
        zString text(c.text);
        text.RemoveLastGlyph();
        EXPECT_STREQ(text, c.expected);
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
    zString text("old");
    EXPECT_EQ(text.Set4CCCC(code), -1);
    EXPECT_STREQ(text, "");
    EXPECT_EQ(text.Set4CCCC(0x78546167), 0);
    EXPECT_STREQ(text, "xTag");
    char out[5];
    EXPECT_EQ(zString::Set4CCCC(out, 0x01020304), -1);
    EXPECT_STREQ(out, "\1\2\3\4");
    EXPECT_EQ(zString::Set4CCCC(out, 0xE4616263), -1);
}

TEST(String, NumbersAndChecksum) {
    EXPECT_EQ(zString("-12x").AsInt32(), -12);
    EXPECT_EQ(zString("x").AsInt32(), 0);
    EXPECT_EQ(zString("4294967295").AsInt32(), -1);
    zString text;
    text.SetUInt32(255, 16);
    EXPECT_STREQ(text, "ff");
    text.SetUInt32(4294967295U, 10);
    EXPECT_STREQ(text, "4294967295");
    text.SetUInt32(255, 8);
    EXPECT_STREQ(text, "");
    EXPECT_EQ(zString("a").Checksum(), 0);
    EXPECT_EQ(zString("ab").Checksum(), 0x6261);
    EXPECT_EQ(zString("abcde").Checksum(), 0x6261 ^ 0x6463);
}

TEST(String, LengthPrefixedTexts) {
    char text[] = "abc";
    EXPECT_EQ(zString::c2pstr(text)[0], 3);
    EXPECT_STREQ(zString::p2cstr(reinterpret_cast<unsigned char*>(text)), "abc");
    const zString longText(std::string(300, 'x').c_str());
    unsigned char pascal[256];
    zString::c2pstrcpy(pascal, longText);
    EXPECT_EQ(pascal[0], 300 - 256);
    zString back;
    back.FromPascal(pascal);
    EXPECT_EQ(back.Length(), 44U);
}

TEST(String, ComparesWithAndWithoutCase) {
    EXPECT_TRUE(zString::string_equal("AbC", "aBc"));
    EXPECT_TRUE(zString::string_equal("AbCx", "aBcy", 3));
    EXPECT_FALSE(zString::string_equal("AbCx", "aBcy", -1)) << "a negative length means all";
    EXPECT_TRUE(zString::string_equal("a", "b", 0));
    EXPECT_NE(zString("A"), zString("a"));
    EXPECT_LT(zString("a"), zString("b"));
    EXPECT_GT(zString("b"), zString());
}

TEST(String, UpperCaseKnowsMoreThanAscii) {
    zString text("stra\xC3\x9F"
                 "e \xC3\xA9");
    text.ToUpper();
    EXPECT_STREQ(text, "STRASSE \xC3\x89");
    text = "bad \xFF";
    text.ToUpper();
    EXPECT_STREQ(text, "bad \xFF");
}

TEST(String, WideTexts) {
    const unsigned short units[] = {'a', 0x20AC, 0xD83D, 0xDE00, 0};
    zString text(units, -1);
    EXPECT_STREQ(text, "a\xE2\x82\xAC\xF0\x9F\x98\x80");
    EXPECT_STREQ(text.SetWideStr(nullptr, 5), "");
    zCFString object("\xE2\x82\xAC");
    EXPECT_STREQ(zString(object.Ref()), "\xE2\x82\xAC");
    EXPECT_STREQ(text.SetCFString(object.Ref("b")), "b");
    EXPECT_STREQ(text.SetCFString(nullptr), "");
}

TEST(String, CipherTextIsHexadecimalAndComesBack) {
    for (const char* plain : {"", "short", "longer than one block"}) {
        zString text(plain);
        text.TeanEncode("key");
        EXPECT_EQ(text.Length(), 2 * zString(plain).Length());
        EXPECT_EQ(std::string(text).find_first_not_of("0123456789ABCDEF"), std::string::npos);
        text.TeanDecode("key");
        EXPECT_STREQ(text, plain);
    }
    zString broken("zz1");
    broken.TeanDecode("key");
    EXPECT_EQ(broken.Length(), 1U);
}
