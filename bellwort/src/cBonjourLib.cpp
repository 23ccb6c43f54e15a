#include "cBonjourLib.h"

#include "Host.h"

namespace {

constexpr int kMissing = host::Discovery::kUnknownError;

} // namespace

void cBonjourLib::initialize() {
    host::Discovery& machine = host::Host::Current().DiscoveryPort();
    fEntries = machine.Exists() ? &machine : nullptr;
}

int cBonjourLib::DNSServiceRegister(Ref* ref, uint32_t flags, uint32_t interface, const char* name,
                                    const char* type, const char* domain, const char* host, uint16_t port,
                                    uint16_t textLength, const void* text,
                                    host::Discovery::RegisterReply reply, void* context) {
    return fEntries ? fEntries->DNSServiceRegister(ref, flags, interface, name, type, domain, host, port,
                                                   textLength, text, reply, context)
                    : kMissing;
}

int cBonjourLib::DNSServiceBrowse(Ref* ref, uint32_t flags, uint32_t interface, const char* type,
                                  const char* domain, host::Discovery::BrowseReply reply, void* context) {
    return fEntries ? fEntries->DNSServiceBrowse(ref, flags, interface, type, domain, reply, context)
                    : kMissing;
}

int cBonjourLib::DNSServiceResolve(Ref* ref, uint32_t flags, uint32_t interface, const char* name,
                                   const char* type, const char* domain, host::Discovery::ResolveReply reply,
                                   void* context) {
    return fEntries ? fEntries->DNSServiceResolve(ref, flags, interface, name, type, domain, reply, context)
                    : kMissing;
}

int cBonjourLib::DNSServiceRefSockFD(Ref ref) {
    return fEntries ? fEntries->DNSServiceRefSockFD(ref) : kMissing;
}

int cBonjourLib::DNSServiceProcessResult(Ref ref) {
    return fEntries ? fEntries->DNSServiceProcessResult(ref) : kMissing;
}

void cBonjourLib::DNSServiceRefDeallocate(Ref ref) {
    if (fEntries)
        fEntries->DNSServiceRefDeallocate(ref);
}
