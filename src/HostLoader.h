#pragma once

#include <memory>
#include <string>

#include "Host.h"

/// Picks the machine to serve: the only place that knows which hosts there are.
namespace HostLoader {

enum class Choice {
    kAuto,    ///< X11 when a display answers, else the test card.
    kX11,     ///< X11 or nothing.
    kBuiltin, ///< The test card.
};

/// \p display names the X display, empty for the environment's; a name rules the test card out. Null with one
/// line of \p reason when the display can't be opened.
std::unique_ptr<host::Host> Load(Choice choice, const std::string& display, std::string& reason);

} // namespace HostLoader
