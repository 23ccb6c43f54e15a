#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>

#include "zRecord.h"
#include "zXML.h"

namespace {

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

/// The one language of a file.
struct Language {
    explicit Language(const std::string& file) {
        zRecord root;
        EXPECT_EQ(zXML::ParseFile(zXML::kAttributes, &root, file.c_str()), 0);
        EXPECT_EQ(root.ChildCount(), 1);
        code = root.Child(0)->AsCString("id", "");
        for (const zRecord* entry : root.Child(0)->Children()) {
            const std::string key = entry->AsCString(zRecord::kXMLTag, "");
            EXPECT_TRUE(texts.emplace(key, entry->AsCString("s", "")).second) << key << " twice";
            EXPECT_NE(texts[key], "") << key;
            placeholders[key] = Placeholders(texts[key]);
        }
    }

    std::string code;
    std::map<std::string, std::string> texts, placeholders;
};

} // namespace

TEST(LanguageFiles, HaveTheSameKeysAndPlaceholders) {
    const std::string kStart = LANGUAGE_FILES "/patois_tamarack_";
    Language english(kStart + "en.xml");
    ASSERT_FALSE(english.texts.empty());
    int languages = 0;
    for (const auto& file : std::filesystem::directory_iterator(LANGUAGE_FILES)) {
        SCOPED_TRACE(file.path());
        const Language language(file.path());
        EXPECT_EQ(file.path(), kStart + language.code + ".xml");
        EXPECT_EQ(language.placeholders, english.placeholders);
        int same = 0;
        for (const auto& [key, text] : language.texts)
            same += text == english.texts[key];
        EXPECT_TRUE(same < 8 || language.code == "en") << "hardly translated";
        ++languages;
    }
    EXPECT_EQ(languages, 11);
}
