#pragma once

#include <string>

#include "Relay.h"

namespace receiver {

// What the gateway tells about its server, as JSON in one line. Texts that are no UTF-8 are mended.

/// The status, the pointer and the figures.
std::string StateText(const Relay::Report& report, const Stream::Settings& settings);
/// Where the pointer is, and its shape's id; null while none shows.
std::string PointerText(const View::Pointer& pointer);

} // namespace receiver
