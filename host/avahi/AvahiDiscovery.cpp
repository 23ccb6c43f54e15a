#include "AvahiDiscovery.h"

#include <cstdlib>
#include <dlfcn.h>
#include <dns_sd.h>
#include <net/if.h>

namespace host {

namespace {

constexpr const char* kLibrary = "libdns_sd.so.1";
constexpr const char* kLoopback = "lo";

/// The library's entry points: all of them, or the library counts as absent.
class Library {
  public:
    /// Loaded at the first call and kept for good, as operations have threads of the library's own.
    static const Library& Get() {
        static const Library library;
        return library;
    }

    bool IsComplete() const { return fComplete; }

    decltype(&::DNSServiceRegister) Register = nullptr;
    decltype(&::DNSServiceBrowse) Browse = nullptr;
    decltype(&::DNSServiceResolve) Resolve = nullptr;
    decltype(&::DNSServiceRefSockFD) RefSockFD = nullptr;
    decltype(&::DNSServiceProcessResult) ProcessResult = nullptr;
    decltype(&::DNSServiceRefDeallocate) RefDeallocate = nullptr;

  private:
    Library() {
        void* handle = dlopen(kLibrary, RTLD_NOW | RTLD_LOCAL);
        fComplete = handle && find(handle, "DNSServiceRegister", Register) &&
                    find(handle, "DNSServiceBrowse", Browse) && find(handle, "DNSServiceResolve", Resolve) &&
                    find(handle, "DNSServiceRefSockFD", RefSockFD) &&
                    find(handle, "DNSServiceProcessResult", ProcessResult) &&
                    find(handle, "DNSServiceRefDeallocate", RefDeallocate);
    }

    template <typename Function>
    static bool find(void* handle, const char* name, Function& entry) {
        entry = reinterpret_cast<Function>(dlsym(handle, name));
        return entry != nullptr;
    }

    bool fComplete = false;
};

} // namespace

AvahiDiscovery::AvahiDiscovery() {
    // Or else the library warns on standard error that it is not the original.
    setenv("AVAHI_COMPAT_NOWARN", "1", 1);
}

bool AvahiDiscovery::Exists() {
    return Library::Get().IsComplete();
}

int32_t AvahiDiscovery::DNSServiceRegister(Ref* ref, uint32_t flags, uint32_t interface, const char* name,
                                           const char* type, const char* domain, const char* host,
                                           uint16_t port, uint16_t textLength, const void* text,
                                           RegisterReply reply, void* context) {
    if (!Exists())
        return kUnknownError;
    // This library knows the machine's own name as null alone.
    const char* nameOrNull = name && *name ? name : nullptr;
    return Library::Get().Register(ref, flags, interface, nameOrNull, type, domain, host, port, textLength,
                                   text, reply, context);
}

int32_t AvahiDiscovery::DNSServiceBrowse(Ref* ref, uint32_t flags, uint32_t interface, const char* type,
                                         const char* domain, BrowseReply reply, void* context) {
    if (!Exists())
        return kUnknownError;
    // This library has no "local only". What this machine offers, and nothing else, is found on its loopback
    // interface.
    if (interface == kLocalOnly)
        interface = if_nametoindex(kLoopback);
    return Library::Get().Browse(ref, flags, interface, type, domain, reply, context);
}

int32_t AvahiDiscovery::DNSServiceResolve(Ref* ref, uint32_t flags, uint32_t interface, const char* name,
                                          const char* type, const char* domain, ResolveReply reply,
                                          void* context) {
    if (!Exists())
        return kUnknownError;
    return Library::Get().Resolve(ref, flags, interface, name, type, domain, reply, context);
}

int AvahiDiscovery::DNSServiceRefSockFD(Ref ref) {
    return Exists() ? Library::Get().RefSockFD(ref) : -1;
}

int32_t AvahiDiscovery::DNSServiceProcessResult(Ref ref) {
    return Exists() ? Library::Get().ProcessResult(ref) : kUnknownError;
}

void AvahiDiscovery::DNSServiceRefDeallocate(Ref ref) {
    if (Exists())
        Library::Get().RefDeallocate(ref);
}

} // namespace host
