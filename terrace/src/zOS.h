#pragma once

#include <cstdint>

/// Questions about the system that the program runs on. The version is what the host reports.
class zOS {
  public:
    /// True on the release that the four-character code names ("tigr", "leop", "lion" ...) and on its updates;
    /// "tig7" is one exact update. An unknown code gives false.
    static bool IsVersion(uint32_t code);

    /// True on that release and on every later one. An unknown code gives false.
    static bool IsVersionOrLater(uint32_t code);
};
