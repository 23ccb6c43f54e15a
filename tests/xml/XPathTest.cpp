#include "zXPath.h"

#include <gtest/gtest.h>

#include <string>

#include "zXML.h"

TEST(XPath, LeadsToTheFirstMatch) {
    const char* const kDocument =
        "<patois><language id='de' n='1'/><language id='en' n='2'><key n='3'/></language>"
        "<other id='en' n='4'/><language id='1.5' n='5'/></patois>";
    zRecord root;
    ASSERT_EQ(zXML::ParseBuffer(zXML::kAttributes, &root, kDocument, -1), 0);
    root.SetInt32("n", 0);
    const struct {
        const char* path;
        int found; ///< The record's number, -1 for null.
    } kCases[] = {
        {"", 0},
        {"/patois", 0},
        {"/*", 0},
        {"/patois[@id='x']", 0}, // the start need not meet a condition
        {"/patois/language", 1},
        {"/language", 1}, // the first step may lead down at once
        {"/patois/language[@id='en']", 2},
        {"/patois/*[@id='en']", 2},
        {"/patois/language[@id='1.5']", 5},
        {"/patois/language[@id='en']/key", 3},
        {"/patois/language/key", -1}, // no way back from the first language
        {"/patois/language[@missing='en']", -1},
        {"/other/language", -1},
        {"/patois/language[@id=en]", -1},
        {"/patois/language[id='en']", -1},
        {"/patois/language[1]", -1},
        {"/patois[", 0},
        {"/patois/language[@id='en", -1},
        {"//", -1},
    };
    for (const auto& c : kCases) {
        const zRecord* found = zXPath::Exact(&root, c.path);
        EXPECT_EQ(found ? found->AsInt32("n", -2) : -1, c.found) << c.path;
    }
    const std::string longName(5000, 'x');
    EXPECT_EQ(zXPath::Exact(&root, ("/patois/" + longName + "[@" + longName + "='1']").c_str()), nullptr);
    EXPECT_EQ(zXPath::Exact(nullptr, "/a"), nullptr);
}
