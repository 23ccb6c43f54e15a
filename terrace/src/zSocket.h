#pragma once

#include <cstdint>

#include "zHeap.h"
#include "zString.h"

class zSocket;

/// One entry of the list that `zSocket::Select` watches.
struct _zSocket_select {
    static constexpr int kRead = 4;
    static constexpr int kWrite = 2;

    zSocket* socket = nullptr; ///< Not owned.
    int interest = 0;          ///< kRead or kWrite; any other value leaves the entry out.
    int result = 0;            ///< What the last call that reported something found: kRead, kWrite or 0.
};

/// A TCP or UDP socket, IPv4 only. Operations return 0 or a negative code, the same on every platform.
/// A socket belongs to one thread at a time; `Shutdown` alone may come from another.
/// Time-outs are given in milliseconds, but only their whole seconds count.
class zSocket {
  public:
    static constexpr int kWouldBlock = -10;
    static constexpr int kInProgress = -11; ///< Also a name server that asks to try again.
    static constexpr int kTimedOut = -14;
    static constexpr int kReset = -15;
    static constexpr int kUnknownHost = -19;
    static constexpr int kRefused = -21;
    static constexpr int kBadArgument = -22;
    static constexpr int kUnreachable = -24;
    static constexpr int kConnected = -25;
    static constexpr int kAddressInUse = -26;
    static constexpr int kOtherError = -27;

    /// Bits for `Create`.
    static constexpr unsigned int kBlocking = 1;
    static constexpr unsigned int kDatagram = 2;
    /// Bits for `Accept`.
    static constexpr unsigned int kStoreAddress = 1;
    static constexpr unsigned int kStoreNumericAddress = 2;

    /// Called by the library's boot; the platform needs neither.
    static void Startup() {}
    static void Shutdown() {}

    static zSocket* Factory() { return new zSocket; }

    zSocket() = default;
    zSocket(const zSocket&) = delete;
    zSocket& operator=(const zSocket&) = delete;

    virtual ~zSocket();
    /// Opens a stream socket, or a datagram socket with `kDatagram`; non-blocking unless `kBlocking` is
    /// given. A platform that refuses is not noticed here: the calls that follow fail.
    virtual int Create(unsigned int flags);
    /// Connects to a name or a dotted address; a name that is not found connects to nothing. A non-blocking
    /// socket answers `kInProgress`. The last argument plays no part.
    virtual int Connect(const char* name, short port, int timeout);
    virtual int Listen(int backlog);
    /// Takes the next connection, non-blocking, into a new socket that the caller owns. A connection whose
    /// descriptor would not fit a descriptor set is closed at once, and then, as when none waits, the result
    /// is `kWouldBlock`.
    virtual int Accept(zSocket** accepted, unsigned int flags);
    /// Sends all of `data`. After each write it waits up to `timeout` for room; a socket that is still full
    /// then gives `kWouldBlock`, and what has left before it is not reported. `sent` may be null.
    virtual int Send(const void* data, int size, int* sent, int timeout);
    /// Reads until `size` bytes are there (0), the peer has closed (0), or no more waits (`kWouldBlock`, the
    /// ordinary end on a non-blocking socket). `got` counts what was read in every case.
    virtual int Receive(void* data, int size, int* got);
    /// Reads once. The end of the stream is 0 with `got` 0.
    virtual int ReceivePending(void* data, int size, int* got);
    /// Makes the object that `Accept` fills.
    virtual zSocket* CreateSocket();

    /// Binds to a port (0: any free one) of all interfaces, or of the one with this dotted address.
    int Bind(short port, const char* address = nullptr);
    /// Sends one datagram: how many bytes, or a code.
    int SendTo(const char* name, int port, const void* data, int size);
    /// Waits until there is something to read. A time-out is `kTimedOut`.
    int SelectRead(int timeout, bool* readable);
    /// Waits until there is room to write. Deliberate: a time-out is 0 with the flag false, unlike
    /// `SelectRead`; callers look at the flag.
    int SelectWrite(int timeout, bool* writable);
    /// Waits until an entry of the list is ready and counts those that are. 0, or -1 with `ready` untouched.
    /// Deliberate: only read interest is waited for, and entries with write interest count as writable in
    /// each call that found something.
    static int Select(zHeap<_zSocket_select*>& list, int timeout, int* ready);
    /// Not available on this platform: nothing is ever ready.
    static int Poll(zHeap<_zSocket_select*>& list, int timeout, int* ready);

    /// Ends the connection, or the listening, but keeps the descriptor: whoever waits on it wakes up and
    /// finds its end. From any thread, as long as the socket lives and no other thread is opening it.
    void Abort();

    /// These set options of the socket: 0, or -1 on failure.
    int SetReuseAddress();
    int SetTCPNoDelay();
    /// While it is corked, a TCP socket keeps back what doesn't fill a packet, so that the pieces of a
    /// message leave together. Taking the cork out sends the rest.
    int SetTCPCork(bool corked);
    int SetBroadcast();
    int SetSendBufferSize(int bytes);
    int SetRecvTimeout(int milliseconds);
    int Multicast_AddMembership(const char* group);
    int Multicast_DropMembership(const char* group);
    int Multicast_SetTTL(unsigned int hops);

    /// The bound port in host order; the pointer may be null.
    int GetLocalPort(unsigned short* port) const;
    /// The peer's dotted text, or the name given to `Connect`; null if there is none.
    const char* Address() const;
    /// The peer's address in network order, if `Accept` was asked for it.
    unsigned int NumAddress() const { return fNumericAddress; }
    /// The platform's descriptor; 0 means none.
    int Descriptor() const { return fDescriptor; }
    /// True if `Select` can watch this socket: its descriptor fits a descriptor set.
    bool IsSelectable() const;

    /// This machine's address for others to connect to, as dotted text: of the first interface named en*,
    /// else eth*, else wl*, else of the host name. A loopback address is only the answer where there is no
    /// other. 0, or -1 with an empty text. The first argument plays no part.
    static int GetLocalIPAddress(const char* interface, zString& address);
    /// The first address of a name, as dotted text.
    static int DNSLookup(const char* name, zString& address);
    /// Keeps a value that nothing reads.
    static void OSOptions(unsigned int options);

    static uint32_t hton_l(uint32_t value);
    static uint32_t ntoh_l(uint32_t value);
    static uint16_t hton_s(uint16_t value);
    static uint16_t ntoh_s(uint16_t value);

  private:
    int set_option(int level, int name, const void* value, unsigned int size);
    int set_option(int level, int name, int value);
    int set_membership(int name, const char* group);

    zString fAddress;
    unsigned int fNumericAddress = 0;
    int fDescriptor = 0;
};
