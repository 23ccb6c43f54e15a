#include "zSocket_bsd_impl.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <ifaddrs.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <optional>

namespace {

sockaddr_in make_address(uint32_t address, uint16_t port) {
    sockaddr_in result = {};
    result.sin_family = AF_INET;
    result.sin_port = htons(port);
    result.sin_addr.s_addr = address;
    return result;
}

/// Repeats a call for as long as signals interrupt it.
template <typename Call>
auto uninterrupted(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

bool is_loopback(uint32_t address) {
    return (ntohl(address) >> 24) == IN_LOOPBACKNET;
}

/// The first interface whose name starts with `prefix` and that has an IPv4 address off the loopback net.
std::optional<uint32_t> find_interface(const ifaddrs* interfaces, const char* prefix) {
    for (const ifaddrs* entry = interfaces; entry != nullptr; entry = entry->ifa_next) {
        if (entry->ifa_addr == nullptr || entry->ifa_addr->sa_family != AF_INET)
            continue;
        sockaddr_in address;
        memcpy(&address, entry->ifa_addr, sizeof address);
        if (strncmp(entry->ifa_name, prefix, strlen(prefix)) == 0 && !is_loopback(address.sin_addr.s_addr))
            return address.sin_addr.s_addr;
    }
    return std::nullopt;
}

std::optional<uint32_t> address_of_host_name() {
    char name[256] = {};
    uint32_t address = 0;
    if (gethostname(name, sizeof name - 1) != 0 ||
        zSocket_bsd_impl::Resolve(name, address) != zSocket_bsd_impl::Lookup::kFound)
        return std::nullopt;
    return address;
}

} // namespace

bool zSocket_bsd_impl::FitsDescriptorSet(int descriptor) {
    return descriptor >= 0 && descriptor < FD_SETSIZE;
}

int zSocket_bsd_impl::Create(bool datagram) {
    return socket(AF_INET, (datagram ? SOCK_DGRAM : SOCK_STREAM) | SOCK_CLOEXEC, 0);
}

int zSocket_bsd_impl::Close(int descriptor) {
    return close(descriptor);
}

int zSocket_bsd_impl::Shutdown(int descriptor) {
    return shutdown(descriptor, SHUT_RDWR);
}

int zSocket_bsd_impl::SetNonBlocking(int descriptor) {
    const int flags = fcntl(descriptor, F_GETFL, 0);
    return flags < 0 ? -1 : fcntl(descriptor, F_SETFL, flags | O_NONBLOCK);
}

int zSocket_bsd_impl::Bind(int descriptor, uint32_t address, uint16_t port) {
    const sockaddr_in local = make_address(address, port);
    return bind(descriptor, reinterpret_cast<const sockaddr*>(&local), sizeof local);
}

int zSocket_bsd_impl::Listen(int descriptor, int backlog) {
    return listen(descriptor, backlog);
}

int zSocket_bsd_impl::Accept(int descriptor, uint32_t& peerAddress) {
    sockaddr_in peer = {};
    int accepted = -1;
    do {
        socklen_t size = sizeof peer;
        accepted =
            accept4(descriptor, reinterpret_cast<sockaddr*>(&peer), &size, SOCK_NONBLOCK | SOCK_CLOEXEC);
    } while (accepted < 0 && (errno == EINTR || errno == ECONNABORTED));
    peerAddress = peer.sin_addr.s_addr;
    return accepted;
}

int zSocket_bsd_impl::Connect(int descriptor, uint32_t address, uint16_t port) {
    const sockaddr_in peer = make_address(address, port);
    return connect(descriptor, reinterpret_cast<const sockaddr*>(&peer), sizeof peer);
}

long zSocket_bsd_impl::Send(int descriptor, const void* data, int size) {
    return uninterrupted([&] { return send(descriptor, data, static_cast<size_t>(size), MSG_NOSIGNAL); });
}

long zSocket_bsd_impl::SendTo(int descriptor, uint32_t address, uint16_t port, const void* data, int size) {
    const sockaddr_in peer = make_address(address, port);
    return uninterrupted([&] {
        return sendto(descriptor, data, static_cast<size_t>(size), MSG_NOSIGNAL,
                      reinterpret_cast<const sockaddr*>(&peer), sizeof peer);
    });
}

long zSocket_bsd_impl::Receive(int descriptor, void* data, int size) {
    return uninterrupted([&] { return recv(descriptor, data, static_cast<size_t>(size), 0); });
}

int zSocket_bsd_impl::Select(int descriptor, Direction direction, int seconds) {
    if (!FitsDescriptorSet(descriptor)) {
        errno = EBADF;
        return -1;
    }
    fd_set set;
    FD_ZERO(&set);
    FD_SET(descriptor, &set);
    timeval timeout = {seconds, 0};
    const bool read = direction == Direction::kRead;
    return select(descriptor + 1, read ? &set : nullptr, read ? nullptr : &set, nullptr, &timeout);
}

int zSocket_bsd_impl::SetOption(int descriptor, int level, int name, const void* value, unsigned int size) {
    return setsockopt(descriptor, level, name, value, size);
}

int zSocket_bsd_impl::LocalPort(int descriptor, uint16_t& port) {
    sockaddr_in local = {};
    socklen_t size = sizeof local;
    const int result = getsockname(descriptor, reinterpret_cast<sockaddr*>(&local), &size);
    port = ntohs(local.sin_port);
    return result;
}

zSocket_bsd_impl::Lookup zSocket_bsd_impl::Resolve(const char* name, uint32_t& address) {
    address = 0;
    if (strspn(name, "0123456789.") == strlen(name)) {
        in_addr numeric = {};
        if (inet_aton(name, &numeric) == 0)
            return Lookup::kUnknown;
        address = numeric.s_addr;
        return Lookup::kFound;
    }
    addrinfo hints = {};
    hints.ai_family = AF_INET;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    const int result = getaddrinfo(name, nullptr, &hints, &found);
    if (result != 0)
        return result == EAI_AGAIN ? Lookup::kTryAgain : Lookup::kUnknown;
    const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> owner(found, freeaddrinfo);
    sockaddr_in first;
    memcpy(&first, found->ai_addr, sizeof first);
    address = first.sin_addr.s_addr;
    return Lookup::kFound;
}

int zSocket_bsd_impl::LocalAddress(uint32_t& address) {
    ifaddrs* interfaces = nullptr;
    getifaddrs(&interfaces);
    const std::unique_ptr<ifaddrs, decltype(&freeifaddrs)> owner(interfaces, freeifaddrs);

    std::optional<uint32_t> found;
    for (const char* prefix : {"en", "eth", "wl"})
        if (!found)
            found = find_interface(interfaces, prefix);
    if (!found)
        found = address_of_host_name();
    // A host name often stands for the loopback address, which is of use to nobody else.
    if (!found || is_loopback(*found))
        if (const std::optional<uint32_t> other = find_interface(interfaces, ""))
            found = other;
    if (!found)
        return -1;
    address = *found;
    return 0;
}
