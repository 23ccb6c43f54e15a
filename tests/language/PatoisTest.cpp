#include "vnPatois.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "FakeHost.h"
#include "TestFolder.h"

namespace {

/// A machine whose user has set up languages, with the program's own resources.
class ReaderHost : public FakeHost {
  public:
    // Not inlined: g++ 12 then takes the parts of the base class for uninitialised.
    [[gnu::noinline]] explicit ReaderHost(std::vector<std::string> languages) {
        fDesktop.languages = std::move(languages);
    }
    host::Desktop& DesktopPort() override { return fDesktop; }

  private:
    struct Scripted : host::Desktop {
        std::vector<std::string> languages;
        std::vector<std::string> PreferredLanguages() override { return languages; }
        std::string ResourcePath(const std::string& name) override {
            return (std::filesystem::path(LANGUAGE_FILES).parent_path() / name).string();
        }
    };
    Scripted fDesktop;
};

/// A fresh folder of language files, the first of them "a.xml".
class Patois : public testing::Test {
  protected:
    void Put(const char* name, const std::string& english) const {
        fFolder.Write(name, "<patois><language id='de'><one s='eins'/></language><language id='en'>" +
                                english + "</language></patois>");
    }

    /// The texts of some keys, each followed by a bar.
    std::string Lookup(const std::vector<const char*>& keys) const {
        std::string texts;
        for (const char* key : keys)
            texts.append(fPatois.Lookup(key)).append("|");
        return texts;
    }

    const TestFolder fFolder;
    const std::string fPath = fFolder / "a.xml";
    vnPatois fPatois;
};

} // namespace

TEST_F(Patois, LooksTextsUpByKey) {
    Put("a.xml", "<both s='s' mac='own'/><one s='text'/><other mac='only'/><neither x='y'/>"
                 "<number s='800'/><umlaut s='\xC3\xA4 &amp; &lt;'/><none s=''/><one s='second'/>");
    fPatois.SetBasePath(fPath.c_str());
    const char* const kKey = "neither";
    EXPECT_EQ(fPatois.Lookup(kKey), kKey) << "nothing is loaded yet";
    EXPECT_EQ(fPatois.Lookup(nullptr), nullptr);
    const std::string kEnglish = "own|text|only|neither|800|\xC3\xA4 & <||unknown|";
    const struct {
        const char *language, *loaded;
        std::string texts;
    } kCases[] = {
        {"en", "en", kEnglish},
        {"de", "de", "both|eins|other|neither|number|umlaut|none|unknown|"}, // no fall-back for a single key
        {nullptr, "en", kEnglish},
        {"fr", "fr", "both|one|other|neither|number|umlaut|none|unknown|"},
        {"", "en", kEnglish},
    };
    for (const auto& [language, loaded, texts] : kCases) {
        fPatois.LoadLanguage(language);
        EXPECT_STREQ(fPatois.CurrentLanguage(), loaded);
        EXPECT_EQ(Lookup({"both", "one", "other", "neither", "number", "umlaut", "none", "unknown"}), texts);
    }
}

TEST_F(Patois, WhatCannotBeReadLeavesKeys) {
    fFolder.Write("broken.xml", "<patois><language");
    fFolder.Write("other.xml", "<other/>");
    for (const std::string& path :
         {std::string(), std::string("x"), std::string("/"), std::string("/nowhere/a.xml"),
          (fFolder / "broken.xml").string(), (fFolder / "other.xml").string(), fFolder.Path().string()}) {
        fPatois.SetBasePath(path.c_str());
        fPatois.LoadLanguage("en");
        EXPECT_STREQ(fPatois.Lookup("key"), "key") << path;
    }
}

TEST_F(Patois, SiblingsAddTexts) {
    Put("a.xml", "<one s='1'/>");
    Put("a.xml2", "<two s='2'/>");
    Put("a.xxx", "<three s='3'/>");
    Put("b.xml", "<four s='4'/>");
    fPatois.SetBasePath(fPath.c_str());
    fPatois.LoadLanguage("en");
    EXPECT_EQ(Lookup({"one", "two", "three", "four"}), "1|2|3|four|")
        << "the last two characters don't count";
}

TEST_F(Patois, MacrosStandForTheProgram) {
    Put("a.xml", "<about s='About #APPLICATION_NAME#'/>"
                 "<all s='#APPLICATION_PRO_NAME##APPLICATION_STD_NAME##APPLICATION_LITE_NAME#|"
                 "#COMPANY_NAME#|#SUPPORT_EMAIL#|#COMPANY_WEBSITE#'/>");
    Put("oem.xml", "<about s='Other'/><more s='added'/>");
    eAppInfo info;
    const std::pair<const char*, const char*> kInfo[] = {{"name", "Name"},
                                                         {"proProductName", "P"},
                                                         {"standardProductName", "S"},
                                                         {"liteProductName", "L"},
                                                         {"company", "C"},
                                                         {"supportEmail", "E"},
                                                         {"website", "W"},
                                                         {"patoisBaseOEM", "oem.xml"},
                                                         {"restrictToLanguages", "en,pt_BR"}};
    for (const auto& [key, text] : kInfo)
        info.record.SetCString(key, text);
    fPatois.Initialize(info, fPath.c_str());
    fPatois.LoadLanguage("en");
    EXPECT_EQ(Lookup({"about", "all", "more"}), "About Name|PSL|C|E|W|added|")
        << "the other file can only add";
    EXPECT_STREQ(fPatois.restrictToLanguages("pt_BR"), "pt_BR");

    ReaderHost machine({"de"});
    const host::HostScope scope(machine);
    EXPECT_STREQ(fPatois.GetUserLanguage("fr"), "en");
}

TEST(PatoisLanguage, IsTheUsersBest) {
    const std::pair<std::vector<std::string>, const char*> kUsers[] = {
        {{}, "longer t"}, // eight characters of the default
        {{"de_AT", "en_GB"}, "de"},
        {{"DE"}, "de"},
        {{"ja_JP"}, "jp"},
        {{"he_IL"}, "iw"},
        {{"pt_PT"}, "pt_BR"},
        {{"nb_NO", "sv_SE"}, "sv"},       // what isn't offered is passed over
        {{"fi_FI", "sv_SE"}, "longer t"}, // Finnish is offered, but has no texts
        {{"", "_", "cs-CZ"}, "cs"},
    };
    for (const auto& [preferred, code] : kUsers) {
        ReaderHost machine(preferred);
        const host::HostScope scope(machine);
        EXPECT_STREQ(vnPatois().GetUserLanguage("longer than eight"), code);
    }
}

TEST(PatoisLanguage, IsLoadedAtLaunch) {
    const std::pair<const char*, const char*> kUsers[] = {
        {"en_US", "Pause"}, {"sv", "Pausa"}, {"pt_BR", "Pausar"}};
    for (const auto& [language, pause] : kUsers) {
        ReaderHost machine({language});
        const host::HostScope scope(machine);
        vnPatois::StartupForUser();
        EXPECT_STREQ(vnPatois::Default()->Lookup("vn_pause"), pause);
    }
    vnPatois::Shutdown();
}
