#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Geometry.h"

namespace host {

/// Identifies an application while it runs. Both numbers 0 are no application's: a walk starts there.
struct ProcessSerialNumber {
    int32_t high = 0;
    int32_t low = 0;

    bool operator==(const ProcessSerialNumber&) const = default;
};

/// Identifies a window while it exists; 0 is no window's id.
using WindowId = uint32_t;

/// What an application is called, in UTF-8. Empty where the machine doesn't know.
struct ProcessInfo {
    std::string name;       ///< For people, as in "Editor".
    std::string identifier; ///< For programs, as in "org.example.editor".
};

/// The layers of windows, lower ones below higher ones. A machine that numbers them otherwise translates.
namespace WindowLevel {
inline constexpr int kDesktopIcon = -20;
inline constexpr int kUnknown = -1; ///< Taken as below the normal windows.
inline constexpr int kNormal = 0;
inline constexpr int kDock = 20;
inline constexpr int kStatus = 30;
inline constexpr int kOverlay = 40;
inline constexpr int kDragging = 50;
inline constexpr int kCursor = 60;
} // namespace WindowLevel

/// What the machine knows of a window that has no title of its own.
struct WindowInfo {
    std::optional<std::string> name; ///< In UTF-8; none where the window was never named.
    std::optional<Rect> bounds;
    int level = WindowLevel::kUnknown;
};

/// The machine's applications and their windows.
///
/// Any operation may be missing on a machine: it then has the answer it has here. This class itself is the
/// window server of a machine without windows. Operations give 0, or another code with their output as it
/// was; windows and applications may vanish at any moment, which is an error like any other.
/// ScreenRectForWindow may be called from any thread, everything else by one thread at a time.
class WindowServer {
  public:
    /// The code of a missing operation.
    static constexpr int kMissing = 1002;

    WindowServer() = default;
    virtual ~WindowServer() = default;
    WindowServer(const WindowServer&) = delete;
    WindowServer& operator=(const WindowServer&) = delete;

    /// Whether there is a window server to ask at all. Nothing else is worth a call without one.
    virtual bool IsAvailable() { return false; }

    /// Steps from \p process to the next of the applications, from both numbers 0 to the first. The code at
    /// the end is an error too. The start looks at the machine; the walk goes through what was there then,
    /// and is to be gone to its end.
    virtual int NextProcess(ProcessSerialNumber&) { return kMissing; }

    /// The application that the user works with.
    virtual int FrontProcess(ProcessSerialNumber&) { return kMissing; }

    /// Brings the application's windows to the front.
    virtual int SetFrontProcess(const ProcessSerialNumber&) { return kMissing; }

    virtual int ProcessInformation(const ProcessSerialNumber&, ProcessInfo&) { return kMissing; }

    /// The windows of an application that are on the screen, in the machine's order.
    virtual int OnScreenWindowList(const ProcessSerialNumber&, std::vector<WindowId>&) { return kMissing; }

    /// The title that the window gives itself, in UTF-8. An error for a window without one.
    virtual int WindowTitle(WindowId, std::string&) { return kMissing; }

    virtual int CopyWindowInfo(WindowId, WindowInfo&) { return kMissing; }

    /// Where the window is now, its frame included, in desktop coordinates. An error while it is not on the
    /// screen.
    virtual int ScreenRectForWindow(WindowId, Rect&) { return kMissing; }
};

} // namespace host
