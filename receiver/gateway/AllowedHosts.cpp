#include "AllowedHosts.h"

#include <algorithm>
#include <cctype>

#include <arpa/inet.h>

namespace receiver {

namespace {

std::string lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

bool is_ip_address(const std::string& name) {
    in6_addr address;
    return inet_pton(AF_INET, name.c_str(), &address) == 1 ||
           inet_pton(AF_INET6, name.c_str(), &address) == 1;
}

/// As it may stand in a line of text.
std::string quoted(const std::string& text) {
    std::string out = "'";
    for (const char c : text.substr(0, 100))
        out += std::isprint(static_cast<unsigned char>(c)) ? c : '?';
    return out + "'";
}

} // namespace

AllowedHosts::AllowedHosts(const Address& listen, const std::vector<std::string>& names)
    : fNames{"localhost", "127.0.0.1", "::1", lower(listen.host)},
      fTakesAnyAddress(listen.host == "0.0.0.0" || listen.host == "::") {
    for (const std::string& name : names) {
        const auto address = Address::Parse(name); // Someone may have given a port, which doesn't matter.
        fNames.push_back(lower(address ? address->host : name));
    }
}

bool AllowedHosts::is_allowed(const std::string& name) const {
    return std::find(fNames.begin(), fNames.end(), lower(name)) != fNames.end() ||
           (fTakesAnyAddress && is_ip_address(name));
}

std::string AllowedHosts::Refusal(const std::string& host, const std::string& origin) const {
    const auto address = Address::Parse(host);
    if (!address || !is_allowed(address->host))
        return "This gateway doesn't answer to the name " + quoted(host) +
               ". If it should, start it with --allow-host NAME.";
    const std::string from = lower(origin);
    if (!from.empty() && from != "http://" + lower(host) && from != "https://" + lower(host))
        return "Requests from pages of " + quoted(origin) +
               " are refused. Use the gateway's own page, or a program that is no browser.";
    return {};
}

} // namespace receiver
