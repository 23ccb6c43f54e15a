#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// A client that allocates nothing while it measures. Ends the program when the connection breaks.
class BenchClient {
  public:
    explicit BenchClient(uint16_t port);
    ~BenchClient();
    BenchClient(const BenchClient&) = delete;
    BenchClient& operator=(const BenchClient&) = delete;

    /// The bytes of a POST that calls \p method, with a "params" element or none.
    static std::string Request(const std::string& method, const std::string& params = "");

    /// Sends a request and waits for its reply's last byte. The reply, head included, is valid until the next
    /// round trip.
    std::string_view RoundTrip(std::string_view request);

  private:
    size_t whole_length(size_t got) const;

    int fSocket;
    std::vector<char> fReply;
};
