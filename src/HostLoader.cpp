#include "HostLoader.h"

#include "BuiltinHost.h"
#include "X11Host.h"

namespace HostLoader {

std::unique_ptr<host::Host> Load(Choice choice, const std::string& display, std::string& reason) {
    if (choice != Choice::kBuiltin) {
        if (auto x11 = host::X11Host::Open(display.c_str(), reason))
            return x11;
        if (choice == Choice::kX11 || !display.empty())
            return nullptr;
    }
    return std::make_unique<host::BuiltinHost>();
}

} // namespace HostLoader
