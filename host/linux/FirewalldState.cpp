#include <cctype>
#include <vector>

#include "Firewalls.h"
#include "zRecord.h"
#include "zXML.h"

namespace host {

namespace {

constexpr int kMaxIncludes = 8; ///< Services within services.

std::string attribute(const zRecord& element, const zVariableKey& name) {
    char text[64];
    return element.AsCString(name, "", &text);
}

bool is(const zRecord& element, const char* tag) {
    return attribute(element, zRecord::kXMLTag) == tag;
}

/// Firewalld's files: those that the machine's administrator wrote stand before those that came with it.
class FirewalldFiles {
  public:
    explicit FirewalldFiles(const std::filesystem::path& root)
        : fOwn(root / "etc/firewalld"), fShipped(root / "usr/lib/firewalld") {}

    std::optional<std::string> Settings() const { return ReadWholeFile(fOwn / "firewalld.conf"); }

    /// Reads a zone or a service; false when there is none.
    bool Load(zRecord& record, const char* folder, const std::string& name) const {
        auto text = ReadWholeFile(fOwn / folder / (name + ".xml"));
        if (!text)
            text = ReadWholeFile(fShipped / folder / (name + ".xml"));
        return text && zXML::ParseBuffer(zXML::kAttributes, &record, text->c_str(),
                                         static_cast<int>(text->size())) == 0;
    }

    /// The zones that the administrator wrote, by name.
    std::vector<std::string> OwnZones() const {
        std::vector<std::string> names;
        std::error_code error;
        for (const auto& entry : std::filesystem::directory_iterator(fOwn / "zones", error)) {
            if (entry.path().extension() == ".xml")
                names.push_back(entry.path().stem());
        }
        return names;
    }

  private:
    std::filesystem::path fOwn;
    std::filesystem::path fShipped;
};

/// Whether a service lets the port in, or one that it includes.
bool service_opens(const FirewalldFiles& files, const std::string& name, int port, int includes);

/// Whether an element of a zone, a service or a rule lets the port in.
bool element_opens(const FirewalldFiles& files, const zRecord& element, int port, int includes) {
    if (is(element, "port"))
        return attribute(element, "protocol") == "tcp" && PortsHold(attribute(element, "port"), '-', port);
    if (is(element, "protocol"))
        return attribute(element, "value") == "tcp";
    if (is(element, "service"))
        return service_opens(files, attribute(element, "name"), port, includes);
    if (is(element, "include"))
        return service_opens(files, attribute(element, "service"), port, includes);
    return false;
}

bool service_opens(const FirewalldFiles& files, const std::string& name, int port, int includes) {
    zRecord service;
    if (includes == kMaxIncludes || !files.Load(service, "services", name))
        return false;
    for (const zRecord* element : service.Children())
        if (element_opens(files, *element, port, includes + 1))
            return true;
    return false;
}

/// A rule in full language: one that accepts, and is about the port or about everything.
bool rule_opens(const FirewalldFiles& files, const zRecord& rule, int port) {
    bool accepts = false;
    bool isForAll = true;
    bool opens = false;
    for (const zRecord* element : rule.Children()) {
        accepts = accepts || is(*element, "accept");
        isForAll = isForAll && (is(*element, "accept") || is(*element, "source") || is(*element, "log") ||
                                is(*element, "audit"));
        opens = opens || element_opens(files, *element, port, 0);
    }
    return accepts && (isForAll || opens);
}

bool zone_opens(const FirewalldFiles& files, const zRecord& zone, int port) {
    if (attribute(zone, "target") == "ACCEPT")
        return true;
    for (const zRecord* element : zone.Children()) {
        if (is(*element, "rule") ? rule_opens(files, *element, port)
                                 : element_opens(files, *element, port, 0))
            return true;
    }
    return false;
}

/// Whether connections come to this zone though it isn't the default one.
bool is_bound(const zRecord& zone) {
    for (const zRecord* element : zone.Children())
        if (is(*element, "interface") || is(*element, "source"))
            return true;
    return false;
}

bool is_running(const std::filesystem::path& root) {
    std::error_code error;
    for (const auto& process : std::filesystem::directory_iterator(root / "proc", error)) {
        const std::string name = process.path().filename();
        if (std::isdigit(static_cast<unsigned char>(name[0])) &&
            ReadWholeFile(process.path() / "comm") == "firewalld\n")
            return true;
    }
    return false;
}

} // namespace

Incoming IncomingByFirewalld(int port, const std::filesystem::path& root) {
    if (!is_running(root))
        return Incoming::kAllowed;
    const FirewalldFiles files(root);
    const auto settings = files.Settings();
    if (!settings)
        return Incoming::kUnknown;
    const std::string set = SettingOf(*settings, "DefaultZone");
    zRecord zone;
    if (!files.Load(zone, "zones", set.empty() ? "public" : set))
        return Incoming::kUnknown;
    if (zone_opens(files, zone, port))
        return Incoming::kAllowed;
    for (const std::string& name : files.OwnZones()) {
        zRecord other;
        if (files.Load(other, "zones", name) && is_bound(other) && zone_opens(files, other, port))
            return Incoming::kAllowed;
    }
    return Incoming::kRefused;
}

} // namespace host
