#pragma once

#include "Discovery.h"

/// The six entry points of DNS-SD, as far as this machine has them: each passes its call on to the host, and
/// fails with -65537 where there is none. Main thread.
class cBonjourLib {
  public:
    using Ref = host::Discovery::Ref;

    cBonjourLib() { initialize(); }

    /// True when the machine has all six.
    bool Exists() const { return fEntries != nullptr; }

    int DNSServiceRegister(Ref* ref, uint32_t flags, uint32_t interface, const char* name, const char* type,
                           const char* domain, const char* host, uint16_t port, uint16_t textLength,
                           const void* text, host::Discovery::RegisterReply reply, void* context);
    int DNSServiceBrowse(Ref* ref, uint32_t flags, uint32_t interface, const char* type, const char* domain,
                         host::Discovery::BrowseReply reply, void* context);
    int DNSServiceResolve(Ref* ref, uint32_t flags, uint32_t interface, const char* name, const char* type,
                          const char* domain, host::Discovery::ResolveReply reply, void* context);
    int DNSServiceRefSockFD(Ref ref);
    int DNSServiceProcessResult(Ref ref);
    void DNSServiceRefDeallocate(Ref ref);

    /// Looks for the entry points anew.
    void initialize();

  private:
    host::Discovery* fEntries = nullptr; ///< The host's; null when it lacks any of the six.
};
