#include "SocketStream.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

namespace receiver {

namespace {

using namespace std::chrono_literals;

constexpr auto kIdleTime = 30s; ///< Between the requests of one connection.
constexpr auto kRequestTime = 10s;
constexpr size_t kRequestBytes = size_t{128} * 1024; ///< With its body, which is some JSON at most.
constexpr auto kWriteTime = 10s;                     ///< Without a byte that goes.
constexpr auto kWholeWriteTime = 60s;                ///< For each picture, say.
/// What may wait to be sent: a picture or so, lest a slow viewer sees old ones.
constexpr int kSendBuffer = 256 * 1024;
constexpr int kUnsentBytes = 64 * 1024;

void set_option(int socket, int level, int name, int value) {
    setsockopt(socket, level, name, &value, sizeof value);
}

/// Without a name look-up.
void describe(const sockaddr_storage& address, std::string& ip, int& port) {
    char text[INET6_ADDRSTRLEN] = "";
    if (address.ss_family == AF_INET) {
        sockaddr_in v4;
        std::memcpy(&v4, &address, sizeof v4);
        inet_ntop(AF_INET, &v4.sin_addr, text, sizeof text);
        port = ntohs(v4.sin_port);
    } else {
        sockaddr_in6 v6;
        std::memcpy(&v6, &address, sizeof v6);
        inet_ntop(AF_INET6, &v6.sin6_addr, text, sizeof text);
        port = ntohs(v6.sin6_port);
    }
    ip = text;
}

} // namespace

SocketStream::SocketStream(int socket) : fSocket(socket) {
    set_option(socket, IPPROTO_TCP, TCP_NODELAY, 1);
    set_option(socket, IPPROTO_TCP, TCP_NOTSENT_LOWAT, kUnsentBytes);
    set_option(socket, SOL_SOCKET, SO_SNDBUF, kSendBuffer);
}

bool SocketStream::wait(short events, Clock::time_point end) const {
    while (true) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
        pollfd entry{fSocket, events, 0};
        const int count = poll(&entry, 1, static_cast<int>(std::max<int64_t>(left, 0)));
        if (count > 0)
            return (entry.revents & events) != 0 && (entry.revents & POLLERR) == 0;
        if (count == 0 || errno != EINTR)
            return false;
    }
}

bool SocketStream::WaitForRequest() {
    if (fIsBroken || (fStart == fEnd && !wait(POLLIN, Clock::now() + kIdleTime)))
        return false;
    fRequestEnd = Clock::now() + kRequestTime;
    fRequestBytes = 0;
    return true;
}

bool SocketStream::is_readable() const {
    return fStart < fEnd || wait(POLLIN, Clock::now());
}

bool SocketStream::is_writable() const {
    return wait(POLLOUT, Clock::now() + kWriteTime);
}

/// What has come, into the buffer. Once that fails, no other request is taken.
bool SocketStream::receive() {
    ssize_t got = 0;
    if (fRequestBytes <= kRequestBytes && wait(POLLIN, fRequestEnd))
        got = recv(fSocket, fBuffer.data(), fBuffer.size(), MSG_DONTWAIT);
    fIsBroken = got <= 0;
    fStart = 0;
    fEnd = fIsBroken ? 0 : static_cast<size_t>(got);
    return !fIsBroken;
}

ssize_t SocketStream::read(char* bytes, size_t size) {
    if (fStart == fEnd && !receive())
        return -1;
    const size_t count = std::min(size, fEnd - fStart);
    std::memcpy(bytes, fBuffer.data() + fStart, count);
    fStart += count;
    fRequestBytes += count;
    return static_cast<ssize_t>(count);
}

ssize_t SocketStream::write(const char* bytes, size_t size) {
    const Clock::time_point wholeEnd = Clock::now() + kWholeWriteTime;
    Clock::time_point end = Clock::now() + kWriteTime;
    for (size_t done = 0; done < size;) {
        const ssize_t sent = send(fSocket, bytes + done, size - done, MSG_DONTWAIT | MSG_NOSIGNAL);
        if (sent >= 0) {
            done += static_cast<size_t>(sent);
            end = std::min(Clock::now() + kWriteTime, wholeEnd);
        } else if (errno == EAGAIN ? !wait(POLLOUT, end) : errno != EINTR)
            return -1;
    }
    return static_cast<ssize_t>(size);
}

void SocketStream::get_remote_ip_and_port(std::string& ip, int& port) const {
    sockaddr_storage address = {};
    socklen_t size = sizeof address;
    if (getpeername(fSocket, reinterpret_cast<sockaddr*>(&address), &size) == 0)
        describe(address, ip, port);
}

void SocketStream::get_local_ip_and_port(std::string& ip, int& port) const {
    sockaddr_storage address = {};
    socklen_t size = sizeof address;
    if (getsockname(fSocket, reinterpret_cast<sockaddr*>(&address), &size) == 0)
        describe(address, ip, port);
}

} // namespace receiver
