#pragma once

#include <array>
#include <cstdint>

#include "PixelRect.h"

namespace host {

/// A window of the built-in machine, which glides to and fro over a display's test card. Where it is is a
/// pure function of the time, in microseconds.
struct BuiltinWindow {
    const char* title; ///< In letters that the test cards' face has.
    const char* application;
    const char* identifier;
    PixelRect ground; ///< All that it ever covers; nothing else moves there.
    int width;
    int height;
    int64_t period; ///< For the way from the ground's left top corner to its other end and back.

    PixelRect Place(int64_t microseconds) const;

    /// Covers wherever the window was from one time to another.
    PixelRect ChangedArea(int64_t before, int64_t after) const;
};

/// One for each display, each of another application.
extern const std::array<BuiltinWindow, 2> kBuiltinWindows;

} // namespace host
