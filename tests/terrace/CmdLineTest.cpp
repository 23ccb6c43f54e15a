#include "zCmdLine.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "zRecord.h"

namespace {

std::string Joined(const zRecord& record) {
    std::string text;
    for (int i = 0; i < static_cast<int>(record.VariableCount()); ++i)
        text += std::string(i ? "|" : "") + zCmdLine::Arg_IdxAsCString(record, i, "?");
    return text;
}

} // namespace

TEST(CmdLine, TakesTheArgumentsOfMain) {
    zRecord record;
    record.SetInt32("old", 1);
    const char* arguments[] = {"program", "-psn_0_1234", "", " \t\r\n", "a", "b c"};
    EXPECT_EQ(zCmdLine::Parse(record, 6, arguments, true), 0);
    EXPECT_EQ(Joined(record), "a|b c");
    EXPECT_EQ(zCmdLine::Parse(record, 6, nullptr, false), -1);
}

TEST(CmdLine, SplitsALine) {
    const struct {
        const char *line, *arguments;
    } kCases[] = {
        {" a\tb\n c ", "a|b|c"},
        {"a \"b c\" d", "a|b c|d"},
        {"a \"it's\" b", "a|it's|b"},
        {"'one' 'two words' x", "one|two|words|x"}, // only double quotes protect blanks
        {"'a\"b'", "a\"b"},
        {"x=\"1 2\"y", "x=|1 2|y"},
        {"\"open end", "open end"},
        {"\"\" '' -psn_0 a", "a"},
        {nullptr, ""},
    };
    zRecord record;
    for (const auto& c : kCases) {
        EXPECT_EQ(zCmdLine::Parse(record, c.line, false), 0);
        EXPECT_EQ(Joined(record), c.arguments);
    }
}

TEST(CmdLine, FindsValuesAndSwitches) {
    zRecord record;
    zCmdLine::Parse(record, "-port 7272 -name x -ab -c", false);
    EXPECT_EQ(zCmdLine::Arg_AsInt32(record, "-port", 1), 7272);
    EXPECT_STREQ(zCmdLine::Arg_AsCString(record, "-name", "none"), "x");
    for (const char* missing : {"-c", "-other", "x "})
        EXPECT_STREQ(zCmdLine::Arg_AsCString(record, missing, "none"), "none");
    for (const int index : {-1, 6, INT_MAX, INT_MIN})
        EXPECT_STREQ(zCmdLine::Arg_IdxAsCString(record, index, "none"), "none");
    for (const char name : {'a', 'b', 'c'})
        EXPECT_TRUE(zCmdLine::SwitchExists(record, name, true)) << name;
    for (const char name : {'n', 'p', 'x', '-', '\0'}) // a switch has no value
        EXPECT_FALSE(zCmdLine::SwitchExists(record, name, true)) << name;
}
