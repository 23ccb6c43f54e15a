#include "TcpListeners.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

namespace host {

namespace {

// The kernel's tables (proc(5)): a head line, then for each socket its number, local address and peer as
// hexadecimal "address:port", its state and more.
constexpr const char* kTable4 = "/proc/net/tcp";
constexpr const char* kTable6 = "/proc/net/tcp6";
constexpr const char* kListening = "0A";

/// The kernel prints an address as 32-bit words of the machine's own byte order, 8 digits each.
std::string address_text(const std::string& digits) {
    constexpr size_t kDigitsPerWord = 8;
    uint32_t words[4] = {};
    bool isAny = true;
    for (size_t i = 0; i < 4 && (i + 1) * kDigitsPerWord <= digits.size(); ++i) {
        words[i] =
            static_cast<uint32_t>(std::stoul(digits.substr(i * kDigitsPerWord, kDigitsPerWord), nullptr, 16));
        isAny = isAny && words[i] == 0;
    }
    if (isAny)
        return "*";
    char text[INET6_ADDRSTRLEN] = "";
    inet_ntop(digits.size() > kDigitsPerWord ? AF_INET6 : AF_INET, words, text, sizeof text);
    return text;
}

/// Appends a line for each listener of a table. False when there is no such table.
bool append_listeners(std::string& lines, const char* table, const char* protocol, unsigned long port) {
    std::ifstream sockets(table);
    std::string line;
    if (!std::getline(sockets, line))
        return false;
    while (std::getline(sockets, line)) {
        std::string number, local, peer, state;
        std::istringstream(line) >> number >> local >> peer >> state;
        const size_t colon = local.find(':');
        if (state != kListening || colon == std::string::npos ||
            std::stoul(local.substr(colon + 1), nullptr, 16) != port)
            continue;
        lines += std::string(protocol) + " 0 0 " + address_text(local.substr(0, colon)) + "." +
                 std::to_string(port) + " *.* LISTEN\n";
    }
    return true;
}

bool write_private_file(const std::string& path, const std::string& text) {
    const int file =
        open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (file < 0)
        return false;
    const bool written = write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    close(file);
    return written;
}

} // namespace

int WriteTCPListeners(int port, const std::string& path) {
    std::string lines;
    const auto wanted = static_cast<unsigned long>(port);
    const bool has4 = append_listeners(lines, kTable4, "tcp4", wanted);
    const bool has6 = append_listeners(lines, kTable6, "tcp6", wanted); // Absent where IPv6 is off.
    return (has4 || has6) && write_private_file(path, lines) ? 0 : -1;
}

} // namespace host
