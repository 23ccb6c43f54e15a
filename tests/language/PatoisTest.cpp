#include "vnPatois.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "FakeHost.h"

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
    void SetUp() override {
        char name[] = "/tmp/glasspane_patois_XXXXXX";
        ASSERT_NE(mkdtemp(name), nullptr);
        fFolder = name;
    }
    void TearDown() override { fs::remove_all(fFolder); }

    std::string Put(const char* name, const std::string& text) const {
        std::ofstream(fFolder / name) << text;
        return fFolder / name;
    }
    static std::string Language(const char* id, const std::string& entries) {
        return "<language id='" + std::string(id) + "'>" + entries + "</language>";
    }
    static std::string File(const std::string& languages) { return "<patois>" + languages + "</patois>"; }

    fs::path fFolder;
    vnPatois fPatois;
};

std::string UserLanguage(const std::vector<std::string>& preferred) {
    ReaderHost machine(preferred);
    const host::HostScope scope(machine);
    return vnPatois().GetUserLanguage("xx");
}

} // namespace

TEST_F(Patois, LooksTextsUpByKey) {
    const std::string entries =
        "<both s='s' mac='own'/><one s='text'/><other mac='only'/><neither x='y'/>"
        "<number s='800'/><umlaut s='\xC3\xA4 &amp; &lt;'/><none s=''/><one s='second'/>";
    fPatois.SetBasePath(
        Put("a.xml", File(Language("de", "<one s='eins'/>") + Language("en", entries))).c_str());
    const char* const kKey = "neither";
    EXPECT_EQ(fPatois.Lookup(kKey), kKey) << "nothing is loaded yet";
    fPatois.LoadLanguage("en");
    const std::pair<const char*, const char*> kTexts[] = {{"both", "own"},   {"one", "text"},
                                                          {"other", "only"}, {"neither", "neither"},
                                                          {"number", "800"}, {"umlaut", "\xC3\xA4 & <"},
                                                          {"none", ""},      {"unknown", "unknown"}};
    for (const auto& [key, text] : kTexts)
        EXPECT_STREQ(fPatois.Lookup(key), text);
    EXPECT_EQ(fPatois.Lookup(kKey), kKey);
    EXPECT_EQ(fPatois.Lookup(nullptr), nullptr);

    fPatois.LoadLanguage("de");
    EXPECT_STREQ(fPatois.Lookup("one"), "eins");
    EXPECT_STREQ(fPatois.Lookup("both"), "both") << "no fall-back for a single key";
    for (const char* empty : {static_cast<const char*>(nullptr), ""}) {
        fPatois.LoadLanguage(empty);
        EXPECT_STREQ(fPatois.CurrentLanguage(), "en");
        EXPECT_STREQ(fPatois.Lookup("one"), "text");
    }
    fPatois.LoadLanguage("fr");
    EXPECT_STREQ(fPatois.CurrentLanguage(), "fr");
    EXPECT_STREQ(fPatois.Lookup("one"), "one");
}

TEST_F(Patois, WhatCannotBeReadLeavesKeys) {
    const std::vector<std::string> paths{"",
                                         "x",
                                         "/",
                                         "/nowhere/a.xml",
                                         Put("broken.xml", "<patois><language"),
                                         Put("other.xml", "<other/>"),
                                         fFolder.string()};
    for (const std::string& path : paths) {
        fPatois.SetBasePath(path.c_str());
        fPatois.LoadLanguage("en");
        EXPECT_STREQ(fPatois.Lookup("key"), "key") << path;
    }
    fPatois.SetBasePath(nullptr);
    fPatois.LoadLanguage("en");
}

TEST_F(Patois, SiblingsAddTexts) {
    const std::string path = Put("a.xml", File(Language("en", "<one s='1'/>")));
    Put("a.xml2", File(Language("en", "<two s='2'/>")));
    Put("a.xxx", File(Language("en", "<three s='3'/>")));
    Put("b.xml", File(Language("en", "<four s='4'/>")));
    fPatois.SetBasePath(path.c_str());
    fPatois.LoadLanguage("en");
    EXPECT_STREQ(fPatois.Lookup("one"), "1");
    EXPECT_STREQ(fPatois.Lookup("two"), "2");
    EXPECT_STREQ(fPatois.Lookup("three"), "3") << "the last two characters don't count";
    EXPECT_STREQ(fPatois.Lookup("four"), "four");
}

TEST_F(Patois, MacrosStandForTheProgram) {
    const std::string path =
        Put("a.xml", File(Language("en", "<about s='About #APPLICATION_NAME#'/>"
                                         "<all s='#APPLICATION_PRO_NAME##APPLICATION_STD_NAME#"
                                         "#APPLICATION_LITE_NAME#|#COMPANY_NAME#|"
                                         "#SUPPORT_EMAIL#|#COMPANY_WEBSITE#'/>")));
    Put("oem.xml", File(Language("en", "<about s='Other'/><more s='added'/>")));
    fPatois.SetBasePath(path.c_str());
    fPatois.LoadLanguage("en");
    EXPECT_STREQ(fPatois.Lookup("about"), "About ");

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
        {{"iw"}, "iw"},
        {{"pt_BR"}, "pt_BR"},
        {{"pt_PT"}, "pt_BR"},
        {{"en_US"}, "en"},
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
    const struct {
        const char *preferred, *code, *pause;
    } kUsers[] = {{"en_US", "en", "Pause"}, {"sv", "sv", "Pausa"}, {"pt_BR", "pt_BR", "Pausar"}};
    for (const auto& user : kUsers) {
        ReaderHost machine({user.preferred});
        const host::HostScope scope(machine);
        vnPatois::StartupForUser();
        EXPECT_STREQ(vnPatois::Default()->CurrentLanguage(), user.code);
        EXPECT_STREQ(vnPatois::Default()->Lookup("vn_pause"), user.pause);
    }
    vnPatois::Startup();
    EXPECT_STREQ(vnPatois::Default()->Lookup("vn_pause"), "vn_pause");
    vnPatois::Shutdown();
}
