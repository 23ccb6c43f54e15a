#pragma once

#include <cstdint>

/// One running DNS-SD operation, as the service library knows it.
struct _DNSServiceRef_t;

namespace host {

/// The machine's DNS-SD service: the entry points that its client libraries share, by their names.
///
/// This class itself is a machine without the service. Codes are 0 or those of dns_sd.h, which are negative.
/// An operation replies through its callback, which runs inside ProcessResult and gets the context given.
/// Names, types and domains are UTF-8. Main thread.
class Discovery {
  public:
    using Ref = _DNSServiceRef_t*;

    /// The code of a machine without the service, and of any failure that has no code of its own.
    static constexpr int32_t kUnknownError = -65537;

    static constexpr uint32_t kAnyInterface = 0;
    /// As an interface: what this machine itself offers.
    static constexpr uint32_t kLocalOnly = 0xFFFFFFFF;

    /// A flag of a browse's reply: the service has come. Without it, it has gone.
    static constexpr uint32_t kFlagAdd = 2;

    using RegisterReply = void (*)(Ref, uint32_t flags, int32_t error, const char* name, const char* type,
                                   const char* domain, void* context);
    using BrowseReply = void (*)(Ref, uint32_t flags, uint32_t interface, int32_t error, const char* name,
                                 const char* type, const char* domain, void* context);
    /// The port is in network order; the text record's bytes are in the form that travels.
    using ResolveReply = void (*)(Ref, uint32_t flags, uint32_t interface, int32_t error,
                                  const char* fullName, const char* hostTarget, uint16_t port,
                                  uint16_t textLength, const unsigned char* text, void* context);

    virtual ~Discovery() = default;

    /// Whether there is a library to ask. Whether its daemon runs, the first operation tells.
    virtual bool Exists() { return false; }

    /// Announces a service until the operation ends. An empty name is the machine's own, an empty domain the
    /// default one, a null host this machine; the port is in network order.
    virtual int32_t DNSServiceRegister(Ref*, uint32_t /*flags*/, uint32_t /*interface*/, const char* /*name*/,
                                       const char* /*type*/, const char* /*domain*/, const char* /*host*/,
                                       uint16_t /*port*/, uint16_t /*textLength*/, const void* /*text*/,
                                       RegisterReply, void* /*context*/) {
        return kUnknownError;
    }

    /// Reports services of a type as they come and go, until the operation ends.
    virtual int32_t DNSServiceBrowse(Ref*, uint32_t /*flags*/, uint32_t /*interface*/, const char* /*type*/,
                                     const char* /*domain*/, BrowseReply, void* /*context*/) {
        return kUnknownError;
    }

    /// Finds out where a service is.
    virtual int32_t DNSServiceResolve(Ref*, uint32_t /*flags*/, uint32_t /*interface*/, const char* /*name*/,
                                      const char* /*type*/, const char* /*domain*/, ResolveReply,
                                      void* /*context*/) {
        return kUnknownError;
    }

    /// The descriptor that can be read when an operation has something to process. It stays the operation's.
    virtual int DNSServiceRefSockFD(Ref) { return -1; }

    /// Takes in what has come. Several of these may pass before a callback runs.
    virtual int32_t DNSServiceProcessResult(Ref) { return kUnknownError; }

    /// Ends an operation.
    virtual void DNSServiceRefDeallocate(Ref) {}
};

} // namespace host
