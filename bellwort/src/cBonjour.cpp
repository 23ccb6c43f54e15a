#include "cBonjour.h"

#include <arpa/inet.h>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <memory>
#include <poll.h>

#include "zObserverHandler.h"
#include "zRecord.h"
#include "zResult.h"
#include "zTrace.h"

namespace {

using Clock = std::chrono::steady_clock;

bool begins_with(const char* text, const char* start) {
    return std::strncmp(text, start, std::strlen(start)) == 0;
}

bool is_full_type(const char* type) {
    return type && *type == '_' && (std::strstr(type, "._tcp.") || std::strstr(type, "._udp."));
}

/// What poll() gives for one descriptor; a signal does not end the wait.
int wait_until_readable(int descriptor, Clock::time_point end) {
    pollfd entry = {descriptor, POLLIN, 0};
    int ready;
    do {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
        ready = poll(&entry, 1, left > 0 ? static_cast<int>(left) : 0);
    } while (ready < 0 && errno == EINTR);
    return ready;
}

} // namespace

cBonjour::cBonjour() = default;

cBonjour::~cBonjour() {
    fRegistrations.RemoveAndDeleteAll();
    fBrowses.RemoveAndDeleteAll();
}

bool cBonjour::SystemHasBonjour() {
    static const bool exists = cBonjourLib().Exists();
    return exists;
}

const char* cBonjour::TCPServiceType(zString& type, const char* name) {
    return type.sprintf("_%s._tcp.", name);
}

// ---- Registering ----

int cBonjour::Service_Register(const char* type, int port, const char* text) {
    if (!fLib.Exists())
        return result::kFailure;
    auto service = std::make_unique<cBonjourService>(type, port);
    if (service->Register(fLib, text) != 0)
        return result::kFailure;
    fRegistrations.Append(service.release());
    return result::kOk;
}

int cBonjour::Service_Unregister(const char* type, int port) {
    int outcome = result::kFailure;
    zListIterator<cBonjourService*> services(fRegistrations);
    while (services.Next()) {
        cBonjourService* service = services.Current();
        if ((type && !begins_with(service->fType, type)) || (port != 0 && port != service->fPort))
            continue;
        services.RmCurrent();
        service->Stop(fLib);
        delete service;
        outcome = result::kOk;
    }
    return outcome;
}

// ---- Browsing ----

int cBonjour::StartObserving(int observer, const char* type, unsigned int flags) {
    if (observer == 0 || !fLib.Exists() || !is_full_type(type))
        return result::kFailure;
    cBonjourService* browse = find_browse(type);
    if (browse == nullptr) {
        auto started = std::make_unique<cBonjourService>(type, 0);
        const uint32_t interface =
            flags & kLocalOnly ? host::Discovery::kLocalOnly : host::Discovery::kAnyInterface;
        if (started->Browse(fLib, interface, on_browse_reply, this) != 0)
            return result::kFailure;
        browse = started.release();
        fBrowses.Append(browse);
    }
    if (!browse->fObservers.EntryOf(observer))
        browse->fObservers.Append(observer);
    return result::kOk;
}

void cBonjour::StopObserving(int observer) {
    zListIterator<cBonjourService*> browses(fBrowses);
    while (browses.Next()) {
        cBonjourService* browse = browses.Current();
        if (!browse->fObservers.Remove(observer) || !browse->fObservers.IsEmpty())
            continue;
        browses.RmCurrent();
        browse->Stop(fLib);
        delete browse;
    }
}

cBonjourService* cBonjour::find_browse(const char* type) const {
    for (cBonjourService* browse : fBrowses)
        if (browse->fType == type)
            return browse;
    return nullptr;
}

cBonjourService* cBonjour::find_by_ref(const zList<cBonjourService*>& services, Ref ref) {
    for (cBonjourService* service : services)
        if (service->fRef == ref)
            return service;
    return nullptr;
}

void cBonjour::on_browse_reply(Ref ref, uint32_t flags, uint32_t interface, int32_t error, const char* name,
                               const char* type, const char* domain, void* context) {
    if (error != 0)
        return;
    cBonjourService service(type, 0);
    service.fName = name;
    service.fDomain = domain;
    service.fAction = flags & host::Discovery::kFlagAdd ? cBonjourService::kAdded : cBonjourService::kDeleted;
    service.fBrowseRef = ref;
    static_cast<cBonjour*>(context)->resolve(service, interface);
}

/// Deliberate: the main thread waits for the answer here, a second at most.
void cBonjour::resolve(cBonjourService& resolve, uint32_t interface) {
    if (resolve.Resolve(fLib, interface, on_resolve_reply, this) != 0)
        return;
    fResolves.Append(&resolve);
    await_answer(resolve);
    fResolves.Remove(&resolve);
    resolve.Stop(fLib);
}

/// Libraries also wake the descriptor for affairs of their own, so that the first result need not be the
/// answer.
void cBonjour::await_answer(cBonjourService& resolve) {
    const int descriptor = fLib.DNSServiceRefSockFD(resolve.fRef);
    const auto end = Clock::now() + std::chrono::milliseconds(kResolveTimeoutMs);
    while (!resolve.fIsAnswered) {
        const int ready = wait_until_readable(descriptor, end);
        if (ready > 0 && fLib.DNSServiceProcessResult(resolve.fRef) == 0)
            continue;
        zTrace::Default()->TraceNote(
            ready == 0 ? "cBonjour: Timeout waiting for browsing resolution.!\n"
                       : "cBonjour: Failure attempting to wait for browsing resolution.!\n");
        return;
    }
}

void cBonjour::on_resolve_reply(Ref ref, uint32_t, uint32_t, int32_t error, const char*,
                                const char* hostTarget, uint16_t port, uint16_t textLength,
                                const unsigned char* text, void* context) {
    const auto& self = *static_cast<cBonjour*>(context);
    cBonjourService* resolve = find_by_ref(self.fResolves, ref);
    if (resolve == nullptr || resolve->fIsAnswered)
        return;
    resolve->fIsAnswered = true;
    const cBonjourService* browse = find_by_ref(self.fBrowses, resolve->fBrowseRef);
    if (error != 0 || browse == nullptr)
        return;

    const bool added = resolve->fAction == cBonjourService::kAdded;
    for (const int observer : browse->fObservers) {
        auto message = std::make_unique<zRecord>();
        message->Set4CCCC(zRecord::kWhat, added ? kServiceAdded : kServiceRemoved);
        message->SetCString("host", hostTarget);
        message->SetCString("service", browse->fType);
        message->SetInt32("port", ntohs(port));
        message->SetCString("name", resolve->fName);
        message->SetText("txt", reinterpret_cast<const char*>(text), textLength);
        zObserverHandler::PostNotification(observer, message.release(), 0);
    }
}
