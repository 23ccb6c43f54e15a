#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>

#include "zRecord.h"
#include "zXML.h"

namespace {

using Texts = std::map<std::string, std::string>;

std::string FileName(const std::string& code) {
    return std::string(LANGUAGE_FILES) + "/patois_tamarack_" + code + ".xml";
}

/// The texts of the one language in a file.
Texts Read(const std::string& code) {
    zRecord root;
    Texts texts;
    EXPECT_EQ(zXML::ParseFile(zXML::kAttributes, &root, FileName(code).c_str()), 0) << code;
    EXPECT_STREQ(root.AsCString(zRecord::kXMLTag, ""), "patois");
    EXPECT_EQ(root.ChildCount(), 1);
    const zRecord* language = root.Child(0);
    if (!language)
        return texts;
    EXPECT_EQ(std::string(language->AsCString("id", "")), code);
    for (const zRecord* entry : language->Children()) {
        const auto [place, isNew] =
            texts.emplace(entry->AsCString(zRecord::kXMLTag, ""), entry->AsCString("s", ""));
        EXPECT_TRUE(isNew) << code << ' ' << place->first << " twice";
        EXPECT_FALSE(place->second.empty()) << code << ' ' << place->first;
    }
    return texts;
}

/// Everything in a text that a program replaces, in order, a line each: "%" to its conversion, "#NAME#".
std::string Placeholders(const std::string& text) {
    std::string found;
    for (size_t at = text.find_first_of("%#"); at != std::string::npos;
         at = text.find_first_of("%#", at + 1)) {
        const bool isName = text[at] == '#';
        const size_t end =
            isName ? text.find('#', at + 1) : text.find_first_not_of("-+ #0123456789.", at + 1);
        if (end == std::string::npos) // As "#" stands for "number".
            continue;
        found.append(text, at, end + 1 - at).append("\n");
        at = end;
    }
    return found;
}

} // namespace

TEST(LanguageFiles, HaveTheSameKeysAndPlaceholders) {
    const Texts english = Read("en");
    ASSERT_FALSE(english.empty());
    int languages = 1;
    for (const char* code : {"de", "fr", "nl", "it", "es", "sv", "cs", "jp", "iw", "pt_BR"}) {
        SCOPED_TRACE(code);
        const Texts texts = Read(code);
        int same = 0;
        EXPECT_EQ(texts.size(), english.size());
        for (const auto& [key, text] : texts) {
            const auto base = english.find(key);
            ASSERT_NE(base, english.end()) << key;
            EXPECT_EQ(Placeholders(text), Placeholders(base->second)) << key;
            same += text == base->second;
        }
        EXPECT_LT(same, 8) << "hardly translated";
        ++languages;
    }
    const auto files = std::distance(std::filesystem::directory_iterator(LANGUAGE_FILES), {});
    EXPECT_EQ(files, languages) << "a file that no test looks at";
}
