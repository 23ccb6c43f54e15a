#pragma once

#include <string>
#include <string_view>

namespace host {

/// A name or title that some program gave itself, as one line of valid UTF-8: up to its first NUL, with
/// blanks for control characters. Such text is Latin-1 by the protocol's letter, but whatever the terminal
/// spoke in practice, so that it is taken as UTF-8 when it can be.
std::string TextFromX11(std::string_view bytes);

} // namespace host
