#include "PosixDesktop.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <spawn.h>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

#include "Firewalls.h"
#include "TcpListeners.h"

namespace host {

namespace {

constexpr char kResourcesFromProgram[] = "../share/glasspane"; // from the folder of the program

/// The first of the variables that is set and not empty decides about messages (POSIX, section 8.2).
std::string message_locale() {
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* value = std::getenv(variable);
        if (value && *value)
            return value;
    }
    return {};
}

/// Without ".UTF-8" and "@euro". Empty for the locales that are of no language.
std::string language_of(const std::string& locale) {
    const std::string language = locale.substr(0, locale.find_first_of(".@"));
    return language == "C" || language == "POSIX" ? std::string() : language;
}

/// A shell that starts the opener and ends at once, so that nobody has to wait for what it starts.
constexpr char kOpen[] = "command -v xdg-open >/dev/null || exit 1; xdg-open \"$1\" >/dev/null 2>&1 &";

} // namespace

std::vector<std::string> PosixDesktop::PreferredLanguages() {
    const std::string base = language_of(message_locale());
    if (base.empty()) // LANGUAGE then doesn't count either.
        return {};
    std::vector<std::string> languages;
    const auto add = [&languages](const std::string& language) {
        if (!language.empty() && std::find(languages.begin(), languages.end(), language) == languages.end())
            languages.push_back(language);
    };
    const char* priorities = std::getenv("LANGUAGE");
    std::istringstream list(priorities ? priorities : "");
    for (std::string locale; std::getline(list, locale, ':');)
        add(language_of(locale));
    add(base);
    return languages;
}

std::string PosixDesktop::ResourcePath(const std::string& name) {
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error)
        return {};
    const auto path = (program.parent_path() / kResourcesFromProgram / name).lexically_normal();
    return std::filesystem::is_regular_file(path, error) ? path.string() : std::string();
}

int PosixDesktop::InfoValue(const std::string& key) {
    std::ifstream info(ResourcePath("info"));
    for (std::string line; std::getline(info, line);) {
        if (line.starts_with(key + "="))
            return std::atoi(line.c_str() + key.size() + 1);
    }
    return 0;
}

std::string PosixDesktop::HomeDirectory() {
    const char* home = std::getenv("HOME");
    return home ? home : "";
}

bool PosixDesktop::OpenAddress(const std::string& url) {
    const char* const arguments[] = {"sh", "-c", kOpen, "sh", url.c_str(), nullptr};
    pid_t shell;
    if (posix_spawnp(&shell, "sh", nullptr, nullptr, const_cast<char* const*>(arguments), environ) != 0)
        return false;
    int status = 0;
    return waitpid(shell, &status, 0) == shell && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

int PosixDesktop::WriteTCPListeners(int port, const std::string& path) {
    return host::WriteTCPListeners(port, path);
}

std::string PosixDesktop::FirewallPreferences(const std::string& path, int port) {
    return path == kApplicationFirewallFile ? FirewallPreferenceText(port) : std::string();
}

} // namespace host
