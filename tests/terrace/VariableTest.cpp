#include "zVariable.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <thread>

#include "z4CCCC.h"
#include "zColor.h"
#include "zFloatPoint.h"
#include "zPoint.h"
#include "zRect.h"

namespace {

std::string TextOf(const zVariable& variable) {
    char buf[64];
    return variable.AsCString("<none>", &buf);
}

zVariable Text(const char* text) {
    zVariable variable;
    variable.SetCString(1, text);
    return variable;
}

} // namespace

TEST(Variable, SetAutoTakesTheKindFromTheText) {
    const struct {
        const char* text;
        zVariable::zVariableType kind;
        const char* form;
    } cases[] = {
        {"-12", zVariable::kInt32, "-12"},
        {"12345678", zVariable::kInt32, "12345678"},
        {"123456789", zVariable::kInt64, "123456789"},
        {"-99999999999999999999999", zVariable::kInt64, "-9223372036854775808"},
        {"1.50", zVariable::kFloat, "1.5"},
        {"-.5", zVariable::kFloat, "-0.5"},
        {"12,-3", zVariable::kPoint, "12,-3"},
        {"1.5,2", zVariable::kFloatPoint, "1.5,2"},
        {"1,2,3", zVariable::kColor, "1,2,3"},
        {"1,2,3,4", zVariable::kRect, "1,2,3,4"},
        {"1,2,3,99999999999999999999", zVariable::kRect, "1,2,3,-1"},
        {"#FF0000", zVariable::kColor, "255,0,0"},
        {"#ff000080", zVariable::kColor, "255,0,0,128"},
    };
    for (const auto& c : cases) {
        zVariable variable;
        EXPECT_TRUE(variable.SetAuto(7, c.text)) << c.text;
        EXPECT_EQ(variable.Type(), c.kind) << c.text;
        EXPECT_EQ(TextOf(variable), c.form) << c.text;
        EXPECT_FALSE(variable.SetAuto(7, c.text)) << c.text;
    }
    for (const char* text : {"", "1-2", "-", "--1", " 1", "1e5", ".", "1.2.3", "1,", ",1", "1.2.3,4",
                             "1,2,3,4,5", "1,2,3.5", "#FFF", "#123", "#1,2", "#GG0000", "text"}) {
        zVariable variable;
        variable.SetAuto(7, text);
        EXPECT_EQ(variable.Type(), zVariable::kCString) << text;
        EXPECT_EQ(TextOf(variable), text);
    }
}

TEST(Variable, NumbersAreCutToTheirLowBitsAndFractionsToTheNearest) {
    zVariable v;
    v.SetInt64(1, 0x123456789ALL);
    EXPECT_EQ(v.AsUInt8(0), 0x9A);
    v.SetUInt64(1, std::numeric_limits<unsigned long long>::max());
    EXPECT_EQ(TextOf(v), "18446744073709551615");
    EXPECT_EQ(v.AsDouble(0), -1.0) << "as signed";
    v.SetColor(1, zColor(255, 1, 2, 255));
    EXPECT_EQ(v.AsInt64(0), 0xFF0102FFLL);

    v.SetDouble(1, -1e300);
    EXPECT_EQ(v.AsInt64(0), std::numeric_limits<long long>::min());
    v.SetFloat(1, std::nanf(""));
    EXPECT_EQ(v.AsInt32(7), 0);
    v.SetFloatPoint(1, zFloatPoint(1e30f, -1.5f));
    EXPECT_EQ(v.AsPoint(zPoint()), zPoint(std::numeric_limits<int>::max(), -1));
}

TEST(Variable, TextsAreReadAsScanfReadsThem) {
    const std::pair<const char*, int> numbers[] = {{"4294967295", -1}, {"  12abc", 12}, {"abc", 5}};
    for (const auto& [text, expected] : numbers)
        EXPECT_EQ(Text(text).AsInt32(5), expected) << text;
    EXPECT_TRUE(std::isinf(Text(std::string(5000, '9').c_str()).AsFloat(0)));
    EXPECT_EQ(Text("1, 2,3,4").AsRect(zRect()), zRect(1, 2, 3, 4));
    EXPECT_EQ(Text("1,2,3").AsRect(zRect(7, 7, 7, 7)), zRect(7, 7, 7, 7));

    const std::pair<const char*, bool> truths[] = {{"yes", true}, {"True", true}, {"Nonsense", false},
                                                   {"f", false},  {"2", true},    {"0", false},
                                                   {"x", true},   {"", true}};
    for (const auto& [text, expected] : truths)
        EXPECT_EQ(Text(text).AsBool(true), expected) << text;
    EXPECT_FALSE(Text("x").AsBool(false));
}

TEST(Variable, SettersReportExactlyWhatChanged) {
    zVariable v;
    EXPECT_TRUE(v.SetInt32(1, 0));
    EXPECT_FALSE(v.SetInt32(1, 0));
    EXPECT_TRUE(v.SetInt32(2, 0)) << "the id";
    EXPECT_TRUE(v.SetUInt32(2, 0)) << "the kind";
    EXPECT_TRUE(v.SetCString(2, "abcd"));
    EXPECT_FALSE(v.SetCString(2, "abcd"));
    v.SetText(2, "abc", 3);
    EXPECT_EQ(TextOf(v), "abcd") << "a stored text that begins with the new one stays";
    for (int i = 0; i < 2; ++i)
        EXPECT_TRUE(v.SetCString(2, nullptr)) << "null always counts as a change";
}

TEST(Variable, TextMovesBetweenInlineAndHeap) {
    zVariable v;
    for (size_t length : {10, 11, 20, 15, 15, 20, 3, 0, 100, 10, 500}) {
        const std::string text(length, static_cast<char>('a' + length % 26));
        v.SetCString(1, text.c_str());
        ASSERT_EQ(TextOf(v), text);
    }
    v.SetText(1, "0123456789abcdef", 12);
    EXPECT_EQ(TextOf(v), "0123456789ab");
    v.SetCString(1, v.AsCString("", nullptr) + 1); // from the heap to the heap, then inline
    v.SetCString(1, v.AsCString("", nullptr) + 9);
    EXPECT_EQ(TextOf(v), "ab");
    v.SetRect(1, zRect(1000, 2000, 3000, 4000));
    v.SetCString(1, v.AsCString("", nullptr));
    EXPECT_EQ(TextOf(v), "1000,2000,3000,4000") << "its own printed text";
}

TEST(Variable, TwoThreadsMayPrintOneVariable) {
    zVariable large;
    large.SetRect(1, zRect(100000, 200000, 300000, 400000));
    const auto print = [&large] {
        for (int round = 0; round < 500; ++round)
            EXPECT_STREQ(large.AsCString("", nullptr), "100000,200000,300000,400000");
    };
    const std::jthread one(print), two(print);
}
