#include "Address.h"

#include <algorithm>
#include <cctype>
#include <charconv>

namespace receiver {

namespace {

bool is_host_character(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '.' || c == '-' || c == '_';
}

bool is_name(std::string_view text) {
    return !text.empty() && text.size() < 256 && std::all_of(text.begin(), text.end(), is_host_character);
}

bool is_ipv6(std::string_view text) {
    return !text.empty() && text.size() < 64 && text.find(':') != text.npos &&
           std::all_of(text.begin(), text.end(), [](char c) {
               return std::isxdigit(static_cast<unsigned char>(c)) || c == ':' || c == '.';
           });
}

std::optional<uint16_t> port_of(std::string_view text) {
    uint16_t port = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
    if (error != std::errc() || end != text.data() + text.size() || port == 0)
        return std::nullopt;
    return port;
}

} // namespace

std::optional<Address> Address::Parse(std::string_view text) {
    Address address;
    const bool hasBrackets = text.starts_with('[');
    const size_t hostEnd = hasBrackets ? text.find(']') : std::min(text.find(':'), text.size());
    if (hostEnd == text.npos)
        return std::nullopt;
    address.host = text.substr(hasBrackets, hostEnd - hasBrackets);
    if (hasBrackets ? !is_ipv6(address.host) : !is_name(address.host))
        return std::nullopt;
    text.remove_prefix(hostEnd + hasBrackets);
    if (text.empty())
        return address;
    const auto port = text[0] == ':' ? port_of(text.substr(1)) : std::nullopt;
    if (!port)
        return std::nullopt;
    address.port = *port;
    return address;
}

std::string Address::Text() const {
    const bool needsBrackets = host.find(':') != host.npos;
    return (needsBrackets ? "[" + host + "]" : host) + ":" + std::to_string(port);
}

} // namespace receiver
