#pragma once

#include "Discovery.h"

namespace host {

/// Avahi's library by the interface of dns_sd.h, loaded when it is first asked for. Its absence is normal.
class AvahiDiscovery : public Discovery {
  public:
    AvahiDiscovery();

    bool Exists() override;
    int32_t DNSServiceRegister(Ref* ref, uint32_t flags, uint32_t interface, const char* name,
                               const char* type, const char* domain, const char* host, uint16_t port,
                               uint16_t textLength, const void* text, RegisterReply reply,
                               void* context) override;
    int32_t DNSServiceBrowse(Ref* ref, uint32_t flags, uint32_t interface, const char* type,
                             const char* domain, BrowseReply reply, void* context) override;
    int32_t DNSServiceResolve(Ref* ref, uint32_t flags, uint32_t interface, const char* name,
                              const char* type, const char* domain, ResolveReply reply,
                              void* context) override;
    int DNSServiceRefSockFD(Ref ref) override;
    int32_t DNSServiceProcessResult(Ref ref) override;
    void DNSServiceRefDeallocate(Ref ref) override;
};

} // namespace host
