#include "Firewalls.h"

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace host {

std::string FirewallPreferenceText(int port, const std::filesystem::path& root) {
    const Incoming ufw = IncomingByUfw(port, root);
    const Incoming firewalld = IncomingByFirewalld(port, root);
    const bool isRefused = ufw == Incoming::kRefused || firewalld == Incoming::kRefused;
    if (!isRefused && (ufw == Incoming::kUnknown || firewalld == Incoming::kUnknown))
        return {};
    return std::string("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                       "<plist version=\"1.0\"><dict><key>globalstate</key><integer>") +
           (isRefused ? "2" : "0") + "</integer></dict></plist>\n";
}

std::optional<std::string> ReadWholeFile(const std::filesystem::path& path) {
    std::error_code error;
    std::ifstream file(path);
    if (!file || !std::filesystem::is_regular_file(path, error))
        return std::nullopt;
    return std::string(std::istreambuf_iterator<char>(file), {});
}

std::string SettingOf(const std::string& text, const std::string& key) {
    std::istringstream lines(text);
    std::string value;
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind(key + "=", 0) == 0)
            value = line.substr(key.size() + 1);
    }
    std::erase(value, '"');
    value.erase(value.find_last_not_of(" \t\r") + 1);
    return value;
}

bool PortsHold(const std::string& list, char through, int port) {
    std::istringstream entries(list);
    for (std::string entry; std::getline(entries, entry, ',');) {
        const size_t separator = entry.find(through);
        const int first = std::atoi(entry.c_str());
        const int last = separator == std::string::npos ? first : std::atoi(entry.c_str() + separator + 1);
        if (first <= port && port <= last)
            return true;
    }
    return false;
}

} // namespace host
