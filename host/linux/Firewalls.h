#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace host {

/// What a firewall makes of new connections that come in on a TCP port.
enum class Incoming {
    kAllowed, ///< From some peers at least; also without that firewall.
    kRefused, ///< From all.
    kUnknown, ///< This user may not read what decides.
};

/// The state of ufw by its files below \p root: `ENABLED` and the input policy, which all may read, and the
/// rules of `ufw` commands, which usually root alone may. Rules in other files of its are not looked at.
Incoming IncomingByUfw(int port, const std::filesystem::path& root = "/");

/// The state of firewalld by its files below \p root, while its process runs: the default zone and those
/// zones that have interfaces or sources of their own. What was set for the time being only is in no file.
/// Needs the started library modules.
Incoming IncomingByFirewalld(int port, const std::filesystem::path& root = "/");

/// The state of both, in the shape of the file `Desktop::kApplicationFirewallFile`: off, or all incoming
/// connections refused. Empty when it is unknown.
std::string FirewallPreferenceText(int port, const std::filesystem::path& root = "/");

/// The whole file; none if it can't be read.
std::optional<std::string> ReadWholeFile(const std::filesystem::path& path);

/// The value of a line `key=value` of a settings file, without quotes; empty when there is none.
std::string SettingOf(const std::string& text, const std::string& key);

/// Whether a list such as "22,80,7000:8000" holds the port; \p through stands between the ends of a range.
bool PortsHold(const std::string& list, char through, int port);

} // namespace host
