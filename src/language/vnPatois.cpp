#include "vnPatois.h"

#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "Host.h"
#include "zDirectory.h"
#include "zFSPath.h"
#include "zFileStream.h"
#include "zOS.h"
#include "zResult.h"
#include "zXML.h"
#include "zXPath.h"

namespace {

std::unique_ptr<vnPatois> gPatois;

constexpr char kEnglishResource[] = "languages/patois_tamarack_en.xml";
constexpr char kEnglishFile[] = "patois_tamarack_en.xml";
constexpr char kLanguageFile[] = "patois_tamarack_<LANG>.xml";
constexpr char kLanguagePlace[] = "<LANG>";

constexpr char kTextAttribute[] = "s";
constexpr unsigned int kUncountedEnd = 2; ///< Characters of the base path in which siblings may differ.

struct Localization {
    std::string_view locale; ///< Language, or language and country, as locales have it.
    const char* name;        ///< As people call it.
    const char* code;        ///< Of its file; null for none.
};

/// Deliberate: Finnish is listed without texts, so that Finns get the default and not their second choice.
constexpr Localization kLocalizations[] = {
    {"en", "English", "en"},
    {"ja", "Japanese", "jp"},
    {"fr", "French", "fr"},
    {"de", "German", "de"},
    {"nl", "Dutch", "nl"},
    {"it", "Italian", "it"},
    {"fi", "Finnish", nullptr},
    {"he", "Hebrew", "iw"},
    {"iw", "Hebrew", "iw"},
    {"cs", "Czech", "cs"},
    {"es", "Spanish", "es"},
    {"sv", "Swedish", "sv"},
    {"pt", "Brazilian Portuguese", "pt_BR"},
};

/// Null for a language that is not in the list.
const Localization* find_localization(std::string_view locale) {
    const std::string_view language = locale.substr(0, locale.find_first_of("_-"));
    for (const Localization& localization : kLocalizations) {
        if (zString::string_equal(std::string(language).c_str(), std::string(localization.locale).c_str()))
            return &localization;
    }
    return nullptr;
}

/// The best of the list for this user; null when none suits.
const Localization* localization_for_user() {
    for (const std::string& locale : host::Host::Current().DesktopPort().PreferredLanguages()) {
        if (const Localization* found = find_localization(locale))
            return found;
    }
    return nullptr;
}

} // namespace

vnPatois::vnPatois() : fTable(std::make_unique<zStrStr>()) {}

vnPatois::~vnPatois() = default;

void vnPatois::Startup() {
    gPatois.reset();
    Default();
}

void vnPatois::StartupForUser() {
    Startup();
    vnPatois& patois = *Default();
    const char* language = patois.GetUserLanguage(kDefaultLanguage);
    zString path(host::Host::Current().DesktopPort().ResourcePath(kEnglishResource).c_str());
    path.ReplaceString(kEnglishFile, kLanguageFile);
    path.ReplaceString(kLanguagePlace, language);
    patois.SetBasePath(path);
    patois.LoadLanguage(language);
}

void vnPatois::Shutdown() {
    gPatois.reset();
}

vnPatois* vnPatois::Default() {
    if (!gPatois)
        gPatois = std::make_unique<vnPatois>();
    return gPatois.get();
}

void vnPatois::Initialize(const eAppInfo& info, const char* basePath) {
    const struct {
        const char* key;
        zString& field;
    } kFields[] = {
        {"name", fApplicationName},
        {"standardProductName", fStandardProductName},
        {"proProductName", fProProductName},
        {"liteProductName", fLiteProductName},
        {"company", fCompany},
        {"supportEmail", fSupportEmail},
        {"website", fWebsite},
        {"patoisBaseOEM", fOEMBasePath},
        {"restrictToLanguages", fRestriction},
    };
    char buf[64];
    for (const auto& entry : kFields)
        entry.field = info.record.AsCString(entry.key, "", &buf);

    fBasePath = basePath;
    if (fOEMBasePath.IsEmpty())
        return;
    zFSPath path(basePath);
    path.GoParent();
    path.GoChild(fOEMBasePath);
    fOEMBasePath = path;
}

const char* vnPatois::GetUserLanguage(const char* defaultLanguage) {
    const Localization* best = localization_for_user();
    const char* language = restrictToLanguages(best && best->code ? best->code : defaultLanguage);
    std::strncpy(fUserLanguage.data(), language, fUserLanguage.size() - 1);
    return fUserLanguage.data();
}

const char* vnPatois::restrictToLanguages(const char* language) const {
    return fRestriction.IsEmpty() || fRestriction.FindSubString(language) ? language : kDefaultLanguage;
}

void vnPatois::LoadLanguage(const char* language) {
    const zString code(language && *language ? language : kDefaultLanguage);
    fTable = std::make_unique<zStrStr>();
    fLanguage = code;
    load_from_base_path(fLanguage, fBasePath);
    if (!fOEMBasePath.IsEmpty())
        load_from_base_path(fLanguage, fOEMBasePath);
}

void vnPatois::load_from_base_path(const char* language, const char* path) {
    const std::string_view whole(path);
    if (whole.size() < kUncountedEnd)
        return;
    const std::string prefix(whole.substr(0, whole.size() - kUncountedEnd));
    zFSPath folder(path);
    folder.GoParent();
    const std::unique_ptr<zDirectory> directory(zDirectory::Factory());
    if (directory->Open(folder) != result::kOk)
        return;
    zString entry;
    while (directory->GetNextFile(entry, nullptr, true) == result::kOk) {
        if (std::strncmp(entry, prefix.c_str(), prefix.size()) == 0)
            load_lang(language, entry);
    }
}

void vnPatois::load_lang(const char* language, const char* file) {
    zFileStream stream(file, zFileStream::kReadFile);
    zRecord root;
    if (stream.Open() != result::kOk || zXML::ParseStream(zXML::kAttributes, &root, &stream) != result::kOk)
        return;
    zString path;
    path.sprintf("/patois/language[@id='%s']", language);
    if (const zRecord* found = zXPath::Exact(&root, path))
        load(*found);
}

void vnPatois::load(const zRecord& language) {
    for (const zRecord* entry : language.Children()) {
        char textBuffer[64];
        char ownBuffer[64];
        const char* key = entry->AsCString(zRecord::kXMLTag, nullptr);
        const char* text = entry->AsCString(kTextAttribute, nullptr, &textBuffer);
        // The text for this family of systems, where there is one of its own.
        text = entry->AsCString(zOS::GetFamilyName(), text, &ownBuffer);
        if (!key || !text)
            continue;
        zString shown(text);
        replace_macros(shown);
        fTable->Add(key, shown);
    }
}

void vnPatois::replace_macros(zString& text) const {
    const struct {
        const char* macro;
        const zString& value;
    } kMacros[] = {
        {"#APPLICATION_NAME#", fApplicationName},
        {"#APPLICATION_PRO_NAME#", fProProductName},
        {"#APPLICATION_STD_NAME#", fStandardProductName},
        {"#APPLICATION_LITE_NAME#", fLiteProductName},
        {"#COMPANY_NAME#", fCompany},
        {"#SUPPORT_EMAIL#", fSupportEmail},
        {"#COMPANY_WEBSITE#", fWebsite},
    };
    for (const auto& entry : kMacros)
        text.ReplaceString(entry.macro, entry.value);
}

const char* vnPatois::Lookup(const char* key) const {
    return key ? fTable->Lookup(key, key) : nullptr;
}

void vnPatois::Print() const {
    fTable->DEBUG_Print();
}
