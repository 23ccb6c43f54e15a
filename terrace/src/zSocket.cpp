#include "zSocket.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>

#include "zBoot.h"
#include "zSocket_bsd_impl.h"
#include "zTerrace.h"

namespace {

zBootIncludeModule gInclude(zTerrace::boot_Module);

using Impl = zSocket_bsd_impl;

std::atomic<unsigned int> gOSOptions = 0;

int code_of_errno() {
    switch (errno) {
    case EAGAIN:
        return zSocket::kWouldBlock;
    case EINPROGRESS:
        return zSocket::kInProgress;
    case ETIMEDOUT:
        return zSocket::kTimedOut;
    case ECONNRESET:
        return zSocket::kReset;
    case ECONNREFUSED:
        return zSocket::kRefused;
    case EHOSTUNREACH:
        return zSocket::kUnreachable;
    case EISCONN:
        return zSocket::kConnected;
    case EADDRINUSE:
        return zSocket::kAddressInUse;
    default:
        return zSocket::kOtherError;
    }
}

int code_of(int result) {
    return result < 0 ? code_of_errno() : 0;
}

/// 0 or the code of a look-up that failed.
int look_up(const char* name, uint32_t& address) {
    if (name == nullptr)
        return zSocket::kBadArgument;
    switch (Impl::Resolve(name, address)) {
    case Impl::Lookup::kFound:
        return 0;
    case Impl::Lookup::kTryAgain:
        return zSocket::kInProgress;
    default:
        return zSocket::kUnknownHost;
    }
}

void set_dotted(zString& text, uint32_t address) {
    char dotted[INET_ADDRSTRLEN] = {};
    inet_ntop(AF_INET, &address, dotted, sizeof dotted);
    text = dotted;
}

/// Deliberate: every wait counts whole seconds only, so that a time-out below 1000 does not wait; the
/// server's pace and the clients' time-outs are built on it.
int whole_seconds(int milliseconds) {
    return std::max(milliseconds, 0) / 1000;
}

} // namespace

zSocket::~zSocket() {
    if (fDescriptor > 0)
        Impl::Close(fDescriptor);
}

int zSocket::Create(unsigned int flags) {
    if (fDescriptor > 0)
        Impl::Close(fDescriptor);
    fDescriptor = Impl::Create((flags & kDatagram) != 0);
    if (fDescriptor == 0)
        return -1;
    if (fDescriptor > 0 && (flags & kBlocking) == 0)
        Impl::SetNonBlocking(fDescriptor);
    return 0;
}

int zSocket::Bind(short port, const char* address) {
    uint32_t local = INADDR_ANY;
    if (address != nullptr && Impl::Resolve(address, local) != Impl::Lookup::kFound) {
        errno = EADDRNOTAVAIL;
        return kUnknownHost;
    }
    return code_of(Impl::Bind(fDescriptor, local, static_cast<uint16_t>(port)));
}

int zSocket::Listen(int backlog) {
    return code_of(Impl::Listen(fDescriptor, backlog));
}

int zSocket::Accept(zSocket** accepted, unsigned int flags) {
    uint32_t peer = 0;
    const int descriptor = Impl::Accept(fDescriptor, peer);
    if (descriptor < 0)
        return code_of_errno();
    if (!Impl::FitsDescriptorSet(descriptor)) {
        Impl::Close(descriptor);
        return kWouldBlock;
    }
    zSocket* socket = CreateSocket();
    socket->fDescriptor = descriptor;
    if ((flags & (kStoreAddress | kStoreNumericAddress)) != 0)
        set_dotted(socket->fAddress, peer);
    if ((flags & kStoreNumericAddress) != 0)
        socket->fNumericAddress = peer;
    *accepted = socket;
    return 0;
}

int zSocket::Connect(const char* name, short port, int) {
    uint32_t peer = 0;
    // The null address would reach this very machine, so a failed look-up goes no further.
    if (const int result = look_up(name, peer); result != 0)
        return result;
    const int result = code_of(Impl::Connect(fDescriptor, peer, static_cast<uint16_t>(port)));
    if (result == 0)
        fAddress = name;
    return result;
}

int zSocket::Send(const void* data, int size, int* sent, int timeout) {
    if (sent != nullptr)
        *sent = 0;
    const char* next = static_cast<const char*>(data);
    for (int remaining = size; remaining > 0;) {
        const long written = Impl::Send(fDescriptor, next, remaining);
        if (written < 1)
            return code_of_errno();
        next += written;
        remaining -= static_cast<int>(written);
        // Deliberate: the wait stands behind each write, the last one too, and its outcome shows in the next
        // write.
        Impl::Select(fDescriptor, Impl::Direction::kWrite, whole_seconds(timeout));
    }
    if (sent != nullptr)
        *sent = std::max(size, 0);
    return 0;
}

int zSocket::Receive(void* data, int size, int* got) {
    *got = 0;
    while (*got < size) {
        const long count = Impl::Receive(fDescriptor, static_cast<char*>(data) + *got, size - *got);
        if (count < 0)
            return code_of_errno();
        if (count == 0)
            return 0;
        *got += static_cast<int>(count);
    }
    return 0;
}

int zSocket::ReceivePending(void* data, int size, int* got) {
    const long count = Impl::Receive(fDescriptor, data, std::max(size, 0));
    *got = static_cast<int>(std::max(count, 0L));
    return count < 0 ? code_of_errno() : 0;
}

zSocket* zSocket::CreateSocket() {
    return new zSocket;
}

int zSocket::SendTo(const char* name, int port, const void* data, int size) {
    uint32_t peer = 0;
    if (const int result = look_up(name, peer); result != 0)
        return result;
    errno = 0;
    const long sent = Impl::SendTo(fDescriptor, peer, static_cast<uint16_t>(port), data, std::max(size, 0));
    return sent > 0 ? static_cast<int>(sent) : code_of_errno();
}

int zSocket::SelectRead(int timeout, bool* readable) {
    const int count = Impl::Select(fDescriptor, Impl::Direction::kRead, whole_seconds(timeout));
    if (readable != nullptr)
        *readable = count > 0;
    return count == 0 ? kTimedOut : code_of(count);
}

int zSocket::SelectWrite(int timeout, bool* writable) {
    const int count = Impl::Select(fDescriptor, Impl::Direction::kWrite, whole_seconds(timeout));
    if (writable != nullptr)
        *writable = count > 0;
    return code_of(count);
}

int zSocket::Select(zHeap<_zSocket_select*>& list, int timeout, int* ready) {
    fd_set reads;
    FD_ZERO(&reads);
    for (const _zSocket_select* entry : list)
        if (entry->interest == _zSocket_select::kRead && entry->socket->IsSelectable())
            FD_SET(entry->socket->fDescriptor, &reads);
    timeval wait = {whole_seconds(timeout), 0};
    const int count = select(FD_SETSIZE, &reads, nullptr, nullptr, &wait);
    if (count < 0)
        return -1;
    *ready = count;
    if (count == 0)
        return 0; // The results stay those of the last call that found something.
    for (_zSocket_select* entry : list) {
        entry->result = entry->interest == _zSocket_select::kWrite ? _zSocket_select::kWrite : 0;
        if (entry->interest == _zSocket_select::kRead && entry->socket->IsSelectable() &&
            FD_ISSET(entry->socket->fDescriptor, &reads))
            entry->result = _zSocket_select::kRead;
    }
    return 0;
}

int zSocket::Poll(zHeap<_zSocket_select*>&, int, int* ready) {
    *ready = 0;
    return 0;
}

void zSocket::Abort() {
    Impl::Shutdown(fDescriptor);
}

int zSocket::set_option(int level, int name, const void* value, unsigned int size) {
    return Impl::SetOption(fDescriptor, level, name, value, size) == 0 ? 0 : -1;
}

int zSocket::set_option(int level, int name, int value) {
    return set_option(level, name, &value, sizeof value);
}

int zSocket::SetReuseAddress() {
    return set_option(SOL_SOCKET, SO_REUSEADDR, 1);
}

int zSocket::SetTCPNoDelay() {
    return set_option(IPPROTO_TCP, TCP_NODELAY, 1);
}

int zSocket::SetTCPCork(bool corked) {
    return set_option(IPPROTO_TCP, TCP_CORK, corked);
}

int zSocket::SetBroadcast() {
    return set_option(SOL_SOCKET, SO_BROADCAST, 1);
}

int zSocket::SetSendBufferSize(int bytes) {
    return set_option(SOL_SOCKET, SO_SNDBUF, bytes);
}

int zSocket::SetRecvTimeout(int milliseconds) {
    const timeval timeout = {milliseconds / 1000, (milliseconds % 1000) * 1000L};
    return set_option(SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout);
}

int zSocket::set_membership(int name, const char* group) {
    ip_mreq request = {};
    if (group == nullptr || inet_aton(group, &request.imr_multiaddr) == 0)
        return -1;
    return set_option(IPPROTO_IP, name, &request, sizeof request);
}

int zSocket::Multicast_AddMembership(const char* group) {
    return set_membership(IP_ADD_MEMBERSHIP, group);
}

int zSocket::Multicast_DropMembership(const char* group) {
    return set_membership(IP_DROP_MEMBERSHIP, group);
}

int zSocket::Multicast_SetTTL(unsigned int hops) {
    return set_option(IPPROTO_IP, IP_MULTICAST_TTL, static_cast<int>(hops));
}

int zSocket::GetLocalPort(unsigned short* port) const {
    uint16_t local = 0;
    const int result = code_of(Impl::LocalPort(fDescriptor, local));
    if (port != nullptr)
        *port = local;
    return result;
}

const char* zSocket::Address() const {
    return fAddress.Length() < 2 ? nullptr : static_cast<const char*>(fAddress);
}

bool zSocket::IsSelectable() const {
    return Impl::FitsDescriptorSet(fDescriptor);
}

int zSocket::GetLocalIPAddress(const char*, zString& address) {
    uint32_t local = 0;
    if (Impl::LocalAddress(local) != 0) {
        address.Clear();
        return -1;
    }
    set_dotted(address, local);
    return 0;
}

int zSocket::DNSLookup(const char* name, zString& address) {
    uint32_t found = 0;
    const int result = look_up(name, found);
    if (result == 0)
        set_dotted(address, found);
    return result;
}

void zSocket::OSOptions(unsigned int options) {
    gOSOptions = options;
}

uint32_t zSocket::hton_l(uint32_t value) {
    return htonl(value);
}

uint32_t zSocket::ntoh_l(uint32_t value) {
    return ntohl(value);
}

uint16_t zSocket::hton_s(uint16_t value) {
    return htons(value);
}

uint16_t zSocket::ntoh_s(uint16_t value) {
    return ntohs(value);
}
