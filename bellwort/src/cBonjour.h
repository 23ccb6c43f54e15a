#pragma once

#include "cBonjourService.h"

/// Makes a TCP port known on the local network by DNS-SD, and watches the network for services of a type.
/// Where the machine has no such service, every call fails with -1 and nothing else happens. Main thread,
/// which must not hold a lock of `zObserverHandler`.
///
/// Each service that comes or goes is posted to the observers as a message: its kind kServiceAdded or
/// kServiceRemoved in `what`, and in "host", "service" (the type), "port" (in host order), "name" and "txt"
/// (the bytes of its text record) what was found out about it. A service that has gone can't always be found
/// out about; it is then left out.
class cBonjour {
  public:
    static constexpr uint32_t kServiceAdded = z4CCCC("cBj+");
    static constexpr uint32_t kServiceRemoved = z4CCCC("cBj-");

    /// A flag of StartObserving: only what this machine itself offers.
    static constexpr unsigned int kLocalOnly = 2;

    /// How long the main thread waits for what a service is about, in milliseconds.
    static constexpr int kResolveTimeoutMs = 1000;

    cBonjour();
    /// Deliberate: what is still registered or watched is not withdrawn; Service_Unregister and StopObserving
    /// come first.
    ~cBonjour();
    cBonjour(const cBonjour&) = delete;
    cBonjour& operator=(const cBonjour&) = delete;

    /// Whether the machine has DNS-SD. Looked for once.
    static bool SystemHasBonjour();

    /// The full type of a TCP service, "_name._tcp.".
    static const char* TCPServiceType(zString& type, const char* name);

    /// Announces a service under the computer's name. `text` is one text of DNS-SD, a byte with its length
    /// and so many characters, as in "\x03v=2"; null for none. 0 says no more than that the request was
    /// taken.
    int Service_Register(const char* type, int port, const char* text);

    /// Withdraws the registrations whose type begins with `type`, null for any, and which have this port, 0
    /// for any. -1 when there is none.
    int Service_Unregister(const char* type, int port);

    /// Posts services of a full type to an observer. Its id must not be 0; a type begins with "_" and holds
    /// "._tcp." or "._udp.". An observer of a type that is watched already shares that watch.
    int StartObserving(int observer, const char* type, unsigned int flags);
    /// Ends it for all types.
    void StopObserving(int observer);

  private:
    using Ref = cBonjourService::Ref;

    static void on_browse_reply(Ref ref, uint32_t flags, uint32_t interface, int32_t error, const char* name,
                                const char* type, const char* domain, void* context);
    static void on_resolve_reply(Ref ref, uint32_t flags, uint32_t interface, int32_t error,
                                 const char* fullName, const char* hostTarget, uint16_t port,
                                 uint16_t textLength, const unsigned char* text, void* context);

    static cBonjourService* find_by_ref(const zList<cBonjourService*>& services, Ref ref);
    cBonjourService* find_browse(const char* type) const;
    void resolve(cBonjourService& resolve, uint32_t interface);
    void await_answer(cBonjourService& resolve);

    cBonjourLib fLib;
    zList<cBonjourService*> fBrowses;  ///< Owned, as are the others.
    zList<cBonjourService*> fResolves; ///< Those in progress.
    zList<cBonjourService*> fRegistrations;
};
