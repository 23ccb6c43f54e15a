#include <sstream>
#include <vector>

#include "Firewalls.h"

namespace host {

namespace {

constexpr char kRuleStart[] = "### tuple ### ";

/// A rule as ufw notes it for itself above the one for the kernel: action, protocol, ports and network it is
/// for, ports and network it is from, for some the applications' names, and the direction. A word "_log" may
/// hang on the action, an interface on the direction, and a comment on the end.
struct UfwRule {
    std::string action;
    std::string protocol;
    std::string port;
    std::string destination;
    std::string sourcePort;
    std::string source;
    std::string direction;
};

std::string up_to(const std::string& text, char end) {
    return text.substr(0, text.find(end));
}

std::optional<UfwRule> parse(const std::string& line) {
    if (line.rfind(kRuleStart, 0) != 0)
        return std::nullopt;
    std::istringstream words(line.substr(sizeof kRuleStart - 1));
    std::vector<std::string> fields;
    for (std::string word; words >> word && word.rfind("comment=", 0) != 0;)
        fields.push_back(word);
    constexpr size_t kFields = 7;
    if (fields.size() < kFields)
        return std::nullopt;
    return UfwRule{up_to(fields[0], '_'), fields[1], fields[2], fields[3], fields[4], fields[5],
                   fields.back()};
}

bool is_about(const UfwRule& rule, int port) {
    return up_to(rule.direction, '_') == "in" && (rule.protocol == "tcp" || rule.protocol == "any") &&
           (rule.port == "any" || PortsHold(rule.port, ':', port));
}

/// A rule for all peers, all addresses and all interfaces of this machine.
bool is_for_all(const UfwRule& rule) {
    constexpr char kAnywhere[] = "0.0.0.0/0";
    return rule.source == kAnywhere && rule.destination == kAnywhere && rule.sourcePort == "any" &&
           rule.direction == "in";
}

/// The first rule that applies decides, and without one the policy. A rule for some peers counts where it
/// lets them in, and not where it only refuses those.
Incoming decide(const std::string& rules, int port, Incoming policy) {
    std::istringstream lines(rules);
    for (std::string line; std::getline(lines, line);) {
        const std::optional<UfwRule> rule = parse(line);
        if (!rule || !is_about(*rule, port))
            continue;
        if (rule->action == "allow" || rule->action == "limit")
            return Incoming::kAllowed;
        if ((rule->action == "deny" || rule->action == "reject") && is_for_all(*rule))
            return Incoming::kRefused;
    }
    return policy;
}

} // namespace

Incoming IncomingByUfw(int port, const std::filesystem::path& root) {
    std::error_code error;
    if (!std::filesystem::exists(root / "usr/sbin/ufw", error))
        return Incoming::kAllowed;
    const auto settings = ReadWholeFile(root / "etc/ufw/ufw.conf");
    if (settings && SettingOf(*settings, "ENABLED") != "yes")
        return Incoming::kAllowed;
    const auto defaults = ReadWholeFile(root / "etc/default/ufw");
    const auto rules = ReadWholeFile(root / "etc/ufw/user.rules");
    if (!settings || !defaults || !rules)
        return Incoming::kUnknown;
    const bool letsIn = SettingOf(*defaults, "DEFAULT_INPUT_POLICY") == "ACCEPT";
    return decide(*rules, port, letsIn ? Incoming::kAllowed : Incoming::kRefused);
}

} // namespace host
