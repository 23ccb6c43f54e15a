#include "vnPatois.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "FakeHost.h"
#include "TestFolder.h"

namespace {

namespace fs = std::filesystem;

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
            return (fs::path(LANGUAGE_FILES).parent_path() / name).string();
        }
    };
    Scripted fDesktop;
};

/// A fresh folder of language files.
class Patois : public testing::Test {
  protected:
    std::string Put(const char* name, const std::string& text) const {
        fFolder.Write(name, text);
        return fFolder / name;
    }
    /// Writes a file of English texts.
    std::string PutEnglish(const char* name, const std::string& entries) const {
        return Put(name, "<patois><language id='en'>" + entries + "</language></patois>");
    }

    const TestFolder fFolder;
    vnPatois fPatois;
};

std::string UserLanguage(const std::vector<std::string>& preferred) {
    ReaderHost machine(preferred);
    const host::HostScope scope(machine);
    return vnPatois().GetUserLanguage("xx");
}

} // namespace

TEST_F(Patois, LooksTextsUpByKey) {
    const std::string path = Put(
        "a.xml", "<patois><language id='de'><one s='eins'/></language><language id='en'>"
                 "<both s='s' mac='own'/><one s='text'/><other mac='only'/><neither x='y'/><number s='800'/>"
                 "<umlaut s='\xC3\xA4 &amp; &lt;'/><none s=''/><one s='second'/></language></patois>");
    fPatois.SetBasePath(path.c_str());
    const char* const kKey = "neither";
    EXPECT_EQ(fPatois.Lookup(kKey), kKey) << "nothing is loaded yet";
    fPatois.LoadLanguage("en");
    const std::pair<const char*, const char*> kTexts[] = {{"both", "own"},   {"one", "text"},
                                                          {"other", "only"}, {"neither", "neither"},
                                                          {"number", "800"}, {"umlaut", "\xC3\xA4 & <"},
                                                          {"none", ""},      {"unknown", "unknown"}};
    for (const auto& [key, text] : kTexts)
        EXPECT_STREQ(fPatois.Lookup(key), text);
    EXPECT_EQ(fPatois.Lookup(nullptr), nullptr);

    fPatois.LoadLanguage("de");
    EXPECT_STREQ(fPatois.Lookup("one"), "eins");
    EXPECT_STREQ(fPatois.Lookup("both"), "both") << "no fall-back for a single key";
    for (const char* empty : {static_cast<const char*>(nullptr), ""}) {
        fPatois.LoadLanguage(empty);
        EXPECT_STREQ(fPatois.CurrentLanguage(), "en");
    }
    fPatois.LoadLanguage("fr");
    EXPECT_STREQ(fPatois.Lookup("one"), "one");
}

TEST_F(Patois, WhatCannotBeReadLeavesKeys) {
    for (const std::string& path : {std::string("x"), std::string("/nowhere/a.xml"), fFolder.Path().string(),
                                    Put("broken.xml", "<patois><language"), Put("other.xml", "<other/>")}) {
        fPatois.SetBasePath(path.c_str());
        fPatois.LoadLanguage("en");
        EXPECT_STREQ(fPatois.Lookup("key"), "key") << path;
    }
    fPatois.SetBasePath(nullptr);
    fPatois.LoadLanguage("en");
}

TEST_F(Patois, SiblingsAddTexts) {
    fPatois.SetBasePath(PutEnglish("a.xml", "<one s='1'/>").c_str());
    PutEnglish("a.xml2", "<two s='2'/>");
    PutEnglish("a.xxx", "<three s='3'/>");
    PutEnglish("b.xml", "<four s='4'/>");
    fPatois.LoadLanguage("en");
    EXPECT_STREQ(fPatois.Lookup("two"), "2");
    EXPECT_STREQ(fPatois.Lookup("three"), "3") << "the last two characters don't count";
    EXPECT_STREQ(fPatois.Lookup("four"), "four");
}

TEST_F(Patois, MacrosStandForTheProgram) {
    const std::string path = PutEnglish("a.xml", "<about s='About #APPLICATION_NAME#'/>"
                                                 "<all s='#APPLICATION_PRO_NAME##APPLICATION_STD_NAME#"
                                                 "#APPLICATION_LITE_NAME#|#COMPANY_NAME#|"
                                                 "#SUPPORT_EMAIL#|#COMPANY_WEBSITE#'/>");
    PutEnglish("oem.xml", "<about s='Other'/><more s='added'/>");
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
    fPatois.Initialize(info, path.c_str());
    fPatois.LoadLanguage("en");
    EXPECT_STREQ(fPatois.Lookup("about"), "About Name") << "the other file can only add";
    EXPECT_STREQ(fPatois.Lookup("all"), "PSL|C|E|W");
    EXPECT_STREQ(fPatois.Lookup("more"), "added");
    EXPECT_STREQ(fPatois.restrictToLanguages("pt_BR"), "pt_BR");
    EXPECT_STREQ(fPatois.restrictToLanguages("de"), "en");

    ReaderHost machine({"de"});
    const host::HostScope scope(machine);
    EXPECT_STREQ(fPatois.GetUserLanguage("fr"), "en");
}

TEST(PatoisLanguage, IsTheUsersBest) {
    const std::pair<std::vector<std::string>, const char*> kUsers[] = {
        {{}, "xx"},
        {{"de_AT", "en_GB"}, "de"},
        {{"DE"}, "de"},
        {{"ja_JP"}, "jp"},
        {{"he_IL"}, "iw"},
        {{"pt_BR"}, "pt_BR"},
        {{"pt_PT"}, "pt_BR"},
        {{"nb_NO", "sv_SE"}, "sv"}, // what isn't offered is passed over
        {{"fi_FI", "sv_SE"}, "xx"}, // Finnish is offered, but has no texts
        {{"zh_CN", "ko"}, "xx"},
        {{"", "_", "cs-CZ"}, "cs"},
    };
    for (const auto& [preferred, code] : kUsers)
        EXPECT_EQ(UserLanguage(preferred), code);
    ReaderHost machine({});
    const host::HostScope scope(machine);
    EXPECT_STREQ(vnPatois().GetUserLanguage("longer than eight"), "longer t");
}

TEST(PatoisLanguage, IsLoadedAtLaunch) {
    const std::pair<const char*, const char*> kPauses[] = {
        {"en", "Pause"}, {"sv", "Pausa"}, {"pt_BR", "Pausar"}};
    for (const auto& [code, pause] : kPauses) {
        ReaderHost machine({code});
        const host::HostScope scope(machine);
        vnPatois::StartupForUser();
        EXPECT_STREQ(vnPatois::Default()->CurrentLanguage(), code);
        EXPECT_STREQ(vnPatois::Default()->Lookup("vn_pause"), pause);
    }
    vnPatois::Shutdown();
}
