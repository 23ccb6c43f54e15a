#include "cBonjourService.h"

#include <arpa/inet.h>

#include "Host.h"
#include "zResult.h"

namespace {

/// What becomes of a registration is the daemon's affair: it settles conflicts of names by itself.
void ignore_outcome(cBonjourService::Ref, uint32_t, int32_t, const char*, const char*, const char*, void*) {}

/// With the byte that tells the length of the rest.
uint16_t text_size(const char* text) {
    const auto length = static_cast<unsigned char>(text ? *text : 0);
    return static_cast<uint16_t>(length == 0 ? 0 : length + 1);
}

} // namespace

int cBonjourService::Register(cBonjourLib& lib, const char* text) {
    const int error = start(lib.DNSServiceRegister(&fRef, 0, host::Discovery::kAnyInterface, fName, fType,
                                                   fDomain, nullptr, htons(static_cast<uint16_t>(fPort)),
                                                   text_size(text), text, ignore_outcome, nullptr));
    return error ? error : RegisterWithSelectLoop(lib);
}

int cBonjourService::Browse(cBonjourLib& lib, uint32_t interface, host::Discovery::BrowseReply reply,
                            void* context) {
    const int error = start(lib.DNSServiceBrowse(&fRef, 0, interface, fType, fDomain, reply, context));
    return error ? error : RegisterWithSelectLoop(lib);
}

int cBonjourService::Resolve(cBonjourLib& lib, uint32_t interface, host::Discovery::ResolveReply reply,
                             void* context) {
    return start(lib.DNSServiceResolve(&fRef, 0, interface, fName, fType, fDomain, reply, context));
}

int cBonjourService::start(int error) {
    if (error == 0 && fRef != nullptr)
        return result::kOk;
    fRef = nullptr;
    return result::kFailure;
}

void cBonjourService::Stop(cBonjourLib& lib) {
    leave_loop();
    if (fRef != nullptr)
        lib.DNSServiceRefDeallocate(fRef);
    fRef = nullptr;
}

int cBonjourService::RegisterWithSelectLoop(cBonjourLib& lib) {
    UnregisterWithSelectLoop();
    if (fRef == nullptr)
        return result::kFailure;
    const int descriptor = lib.DNSServiceRefSockFD(fRef);
    if (descriptor < 0) {
        Stop(lib);
        return result::kFailure;
    }
    fWatched = descriptor;
    host::Host::Current().RunLoopPort().AddDescriptor(descriptor, [this, &lib] {
        // A daemon that has gone would wake the loop for ever.
        if (lib.DNSServiceProcessResult(fRef) != 0)
            leave_loop();
    });
    return result::kOk;
}

int cBonjourService::UnregisterWithSelectLoop() {
    if (fRef == nullptr)
        return result::kFailure;
    leave_loop();
    return result::kOk;
}

void cBonjourService::leave_loop() {
    if (fWatched >= 0)
        host::Host::Current().RunLoopPort().RemoveDescriptor(fWatched);
    fWatched = -1;
}
