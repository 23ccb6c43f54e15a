#include "X11Link.h"

#include <utility>

namespace host {

X11Link::X11Link(std::string displayName, X11Transport transport, std::shared_ptr<X11Session> first)
    : fDisplayName(std::move(displayName)), fTransport(transport), fSession(std::move(first)) {}

std::shared_ptr<X11Session> X11Link::Session() const {
    const std::lock_guard lock(fLock);
    return fSession;
}

void X11Link::Replace(std::shared_ptr<X11Session> session) {
    const std::lock_guard lock(fLock);
    if (fHasLetGo)
        session->Connection().Abort();
    fSession.swap(session); // The old one is deleted without the lock.
}

void X11Link::LetGo() {
    const std::lock_guard lock(fLock);
    fHasLetGo = true;
    fSession->Connection().Abort();
}

} // namespace host
