#include "X11Host.h"

#include <utility>

namespace host {

std::unique_ptr<X11Host> X11Host::Open(const char* displayName, std::string& whyNot, X11Transport transport) {
    const std::string name = displayName ? displayName : "";
    auto session = X11Session::Open(name, transport, whyNot);
    if (!session)
        return nullptr;
    return std::unique_ptr<X11Host>(new X11Host(name, transport, std::move(session)));
}

X11Host::X11Host(const std::string& displayName, X11Transport transport, std::shared_ptr<X11Session> session)
    : fLink(displayName, transport, std::move(session)) {}

} // namespace host
