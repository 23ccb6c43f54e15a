#pragma once

#include <array>
#include <memory>

#include "zRecord.h"
#include "zStrStr.h"
#include "zString.h"

/// What a program tells about itself for the macros in its texts. Missing entries are empty.
///
/// The record's variables are "name", "standardProductName", "proProductName", "liteProductName", "company",
/// "supportEmail", "website"; "patoisBaseOEM", a second language file beside the first; and
/// "restrictToLanguages", the only codes allowed, in one text.
struct eAppInfo {
    zRecord record;
};

/// The texts that the user sees: code asks for them by key and shows what it gets.
///
/// A text that is missing shows as its key; no call fails. Languages are loaded on the main thread before
/// others look texts up; Lookup is for any thread.
class vnPatois {
  public:
    static constexpr char kDefaultLanguage[] = "en";

    /// Makes the global instance anew.
    static void Startup();
    /// Startup, then the texts of the language that the user prefers, from the program's resources.
    static void StartupForUser();
    static void Shutdown();
    /// The global instance, made at the first call.
    static vnPatois* Default();

    vnPatois();
    ~vnPatois();
    vnPatois(const vnPatois&) = delete;
    vnPatois& operator=(const vnPatois&) = delete;

    /// Sets what the macros stand for, and the files. A program that does not call it has empty macros.
    void Initialize(const eAppInfo& info, const char* basePath);
    void SetBasePath(const char* path) { fBasePath = path; }

    /// The code of the best language that the user prefers and this program knows, or the default. Valid
    /// until the next call.
    const char* GetUserLanguage(const char* defaultLanguage);
    /// The language itself when the program is not restricted to others, else English.
    const char* restrictToLanguages(const char* language) const;

    /// Replaces all texts by those of a language; null and "" mean English.
    /// Deliberate: reads all files beside the base path whose names differ from it in the last two characters
    /// at most; products add texts that way. A text that is there already stays.
    void LoadLanguage(const char* language);
    const char* CurrentLanguage() const { return fLanguage; }

    /// The text, valid until the next LoadLanguage, or the key itself. Null for null.
    const char* Lookup(const char* key) const;

    /// Prints all keys and texts.
    void Print() const;

  private:
    /// At most eight characters, and a zero.
    using LanguageCode = std::array<char, 9>;

    void load_from_base_path(const char* language, const char* path);
    void load_lang(const char* language, const char* file);
    void load(const zRecord& language);
    void replace_macros(zString& text) const;

    zString fBasePath;
    zString fLanguage = kDefaultLanguage;
    zString fApplicationName;
    zString fStandardProductName;
    zString fProProductName;
    zString fLiteProductName;
    zString fCompany;
    zString fSupportEmail;
    zString fWebsite;
    zString fOEMBasePath;
    zString fRestriction;
    LanguageCode fUserLanguage{"en"};
    std::unique_ptr<zStrStr> fTable;
};
