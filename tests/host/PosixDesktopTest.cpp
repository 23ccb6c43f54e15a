#include "PosixDesktop.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "Await.h"
#include "TestFolder.h"

namespace {

constexpr const char* kVariables[] = {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"};

} // namespace

TEST(PosixDesktop, LanguagesComeFromTheEnvironment) {
    const struct {
        const char* values[4]; ///< In the order of kVariables; null for not set.
        std::vector<std::string> languages;
    } kCases[] = {
        {{}, {}},
        {{nullptr, nullptr, nullptr, "de_AT.UTF-8"}, {"de_AT"}},
        {{nullptr, nullptr, "sv_SE@euro", "de_DE"}, {"sv_SE"}},
        {{nullptr, "fr_FR.ISO-8859-1", "sv_SE", "de_DE"}, {"fr_FR"}},
        {{nullptr, "", "", "de_DE"}, {"de_DE"}},
        {{"nb:sv::nb:C", nullptr, nullptr, "en_US.UTF-8"}, {"nb", "sv", "en_US"}},
        {{"sv", "C.UTF-8", nullptr, "de_DE"}, {}}, // the plain locale has no translations
        {{"sv", nullptr, nullptr, "POSIX"}, {}},
        {{"sv", nullptr, nullptr, nullptr}, {}},
    };
    for (const auto& c : kCases) {
        for (size_t i = 0; i < std::size(kVariables); ++i) {
            if (c.values[i])
                setenv(kVariables[i], c.values[i], 1);
            else
                unsetenv(kVariables[i]);
        }
        EXPECT_EQ(host::PosixDesktop().PreferredLanguages(), c.languages);
    }
}

TEST(PosixDesktop, OpensWithTheUsersOpener) {
    // An opener of the test's own, in the place of the desktop's.
    const TestFolder home;
    const std::string folder = home.Path().string();
    home.Write("xdg-open", "#!/bin/sh\nprintf %s \"$1\" >" + folder + "/part && mv " + folder + "/part " +
                               folder + "/opened\n");
    std::filesystem::permissions(home / "xdg-open", std::filesystem::perms::owner_all);
    const std::string path = std::getenv("PATH");
    host::PosixDesktop desktop;
    setenv("PATH", (folder + ":" + path).c_str(), 1);
    EXPECT_TRUE(desktop.OpenFile("/a b/'c\".pkg"));
    setenv("PATH", path.c_str(), 1);
    EXPECT_TRUE(Await([&] { return home.Read("opened") == "/a b/'c\".pkg"; }));
}
