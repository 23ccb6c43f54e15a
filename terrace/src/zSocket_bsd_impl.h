#pragma once

#include <cstdint>

/// The calls on BSD sockets that `zSocket` stands on, one operation per call, IPv4 only. Plain descriptors go
/// in; a failure is -1 with the reason in `errno`, as from the platform. Addresses are in network order,
/// ports in host order. Calls that a signal interrupts are repeated, `Select` and `Connect` apart.
class zSocket_bsd_impl {
  public:
    /// Which readiness one descriptor is waited for.
    enum class Direction { kRead, kWrite };

    /// True if the descriptor may stand in a descriptor set, which has room for those below 1024 alone.
    static bool FitsDescriptorSet(int descriptor);

    static int Create(bool datagram);
    static int Close(int descriptor);
    static int Shutdown(int descriptor);
    static int SetNonBlocking(int descriptor);
    static int Bind(int descriptor, uint32_t address, uint16_t port);
    static int Listen(int descriptor, int backlog);
    /// The next connection, made non-blocking; connections that broke before their turn are passed over.
    static int Accept(int descriptor, uint32_t& peerAddress);
    static int Connect(int descriptor, uint32_t address, uint16_t port);
    /// Bytes sent or -1. A peer that is gone gives EPIPE and never a signal.
    static long Send(int descriptor, const void* data, int size);
    static long SendTo(int descriptor, uint32_t address, uint16_t port, const void* data, int size);
    static long Receive(int descriptor, void* data, int size);
    /// Waits for one descriptor. 1, 0 after `seconds`, or -1, also for one that fits no set (EBADF).
    static int Select(int descriptor, Direction direction, int seconds);
    static int SetOption(int descriptor, int level, int name, const void* value, unsigned int size);
    static int LocalPort(int descriptor, uint16_t& port);

    /// Why an address was not found.
    enum class Lookup { kFound, kTryAgain, kUnknown };
    /// The first IPv4 address of a name or of a dotted text.
    static Lookup Resolve(const char* name, uint32_t& address);
    /// This machine's address as others see it; see `zSocket::GetLocalIPAddress`. 0 or -1.
    static int LocalAddress(uint32_t& address);
};
