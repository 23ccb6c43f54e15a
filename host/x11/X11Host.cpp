#include "X11Host.h"

#include <utility>

namespace host {

std::unique_ptr<X11Host> X11Host::Open(const char* displayName, std::string& whyNot, X11Transport transport) {
    auto connection = X11Connection::Open(displayName, whyNot);
    if (!connection)
        return nullptr;
    return std::unique_ptr<X11Host>(new X11Host(std::move(connection), displayName, transport));
}

X11Host::X11Host(std::unique_ptr<X11Connection> connection, const char* displayName, X11Transport transport)
    : fConnection(std::move(connection)),
      fDisplays(*fConnection, displayName, transport),
      fPointer(*fConnection),
      fWindowServer(*fConnection) {}

} // namespace host
