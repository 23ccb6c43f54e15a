#pragma once

#include "Desktop.h"

namespace host {

/// Languages by the locale variables of the environment; resources in `share/glasspane` beside the `bin` that
/// the program was started from, which holds for an installation as for a build tree. What a packager sets
/// stands in lines `key=number` of the resource "info". Sockets and firewalls as Linux tells of them; files
/// and addresses are opened by xdg-open.
class PosixDesktop : public Desktop {
  public:
    std::vector<std::string> PreferredLanguages() override;
    std::string ResourcePath(const std::string& name) override;
    int InfoValue(const std::string& key) override;
    std::string HomeDirectory() override;
    bool OpenFile(const std::string& path) override { return OpenAddress(path); }
    bool OpenAddress(const std::string& url) override;
    int WriteTCPListeners(int port, const std::string& path) override;
    /// In the newer of the two shapes.
    std::string FirewallPreferences(const std::string& path, int port) override;
};

} // namespace host
