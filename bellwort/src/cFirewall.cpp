#include "cFirewall.h"

#include "Host.h"
#include "cPropertyList.h"
#include "z4CCCC.h"
#include "zOS.h"
#include "zString.h"

namespace {

constexpr int kAllIncomingRefused = 2; // Of "globalstate"; 0 is off, 1 by application.

bool read_preferences(cPropertyList& list, const char* path, int port) {
    const std::string text = host::Host::Current().DesktopPort().FirewallPreferences(path, port);
    return list.Parse(text.c_str(), static_cast<int>(text.size())) == 0;
}

/// Whether a rule is on and names the port.
bool rule_opens(const zRecord* rule, int port) {
    int enabled = 0;
    if (!cPropertyList::AsInt32(cPropertyList::Find(rule, "enable"), enabled) || enabled == 0)
        return false;
    const zRecord* ports = cPropertyList::Find(rule, "port");
    if (!cPropertyList::IsArray(ports))
        return false;
    for (const zRecord* element : cPropertyList::Elements(*ports)) {
        zString text;
        if (cPropertyList::AsString(element, text) && text.AsInt32() == port)
            return true;
    }
    return false;
}

/// Up to 10.4: a list of rules, each of which opens ports.
bool is_blocked_by_rules(int port) {
    cPropertyList list;
    bool isOn = false;
    if (!read_preferences(list, host::Desktop::kRuleFirewallFile, port) ||
        !cPropertyList::AsBool(cPropertyList::Find(list.Root(), "state"), isOn) || !isOn)
        return false;
    const zRecord* rules = cPropertyList::Find(list.Root(), "firewall");
    if (!cPropertyList::IsDictionary(rules))
        return true;
    for (const zRecord* rule : cPropertyList::Elements(*rules))
        if (rule_opens(rule, port))
            return false;
    return true;
}

/// From 10.5: one state. Deliberate: with a firewall by application the port doesn't count as blocked,
/// whatever its list of applications says.
bool is_blocked_by_state(int port) {
    cPropertyList list;
    int state = 0;
    return read_preferences(list, host::Desktop::kApplicationFirewallFile, port) &&
           cPropertyList::AsInt32(cPropertyList::Find(list.Root(), "globalstate"), state) &&
           state == kAllIncomingRefused;
}

} // namespace

bool cFirewall::IsTCPPortFirewalled(int port) {
    return zOS::IsVersionOrLater(z4CCCC("leop")) ? is_blocked_by_state(port) : is_blocked_by_rules(port);
}

void cFirewall::Startup() {}

void cFirewall::Shutdown() {}
