#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace receiver {

/// Where a server listens.
struct Address {
    static constexpr uint16_t kDefaultPort = 7272;

    std::string host; ///< A name or an IP address, an IPv6 one without brackets.
    uint16_t port = kDefaultPort;

    /// Reads "host", "host:port", "[IPv6]" or "[IPv6]:port". Nothing for any other text.
    static std::optional<Address> Parse(std::string_view text);

    /// "host:port", with brackets where they are needed.
    std::string Text() const;
    std::string URL() const { return "http://" + Text() + "/"; }
};

} // namespace receiver
