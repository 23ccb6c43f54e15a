#pragma once

#include <array>
#include <chrono>
#include <string>

#include <httplib.h>

namespace receiver {

/// The bytes of one connection, with a bound for each wait. One thread.
class SocketStream : public httplib::Stream {
  public:
    /// The socket stays the caller's.
    explicit SocketStream(int socket);

    /// Waits for the next request; the whole of it then has to come in time, and may have only so many bytes.
    /// False if none comes.
    bool WaitForRequest();

    bool is_readable() const override;
    /// Waits until it can be written to. False if the peer is gone or takes nothing in time.
    bool is_writable() const override;
    ssize_t read(char* bytes, size_t size) override;
    /// All of it, or -1.
    ssize_t write(const char* bytes, size_t size) override;
    void get_remote_ip_and_port(std::string& ip, int& port) const override;
    // Overrides what not every version of the library has.
    virtual void get_local_ip_and_port(std::string& ip, int& port) const;
    socket_t socket() const override { return fSocket; }

  private:
    using Clock = std::chrono::steady_clock;

    bool wait(short events, Clock::time_point end) const;
    bool wait_for_room(Clock::time_point end) const;
    bool receive();

    const int fSocket;
    std::array<char, 4096> fBuffer; ///< The request's head is read byte by byte.
    size_t fStart = 0;              ///< What has not been read yet.
    size_t fEnd = 0;
    size_t fRequestBytes = 0; ///< Read so far.
    bool fIsBroken = false;
    Clock::time_point fRequestEnd; ///< When the request has to be here.
};

} // namespace receiver
