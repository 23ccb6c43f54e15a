#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "Geometry.h"

namespace host {

/// Identifies a display for as long as the program runs: one that comes back has the id that it had. 0 is no
/// display's id: it stands for the main one.
using DisplayId = uint32_t;

/// A view of pixels that a port owns: 32 bits each, the bytes in memory b, g, r, then one undefined byte;
/// top row first. Valid until the next Picture() of the same port.
struct Image {
    const uint8_t* pixels = nullptr;
    int width = 0;
    int height = 0;
    int rowBytes = 0; ///< From one row to the next; at least width * 4.
};

/// The open framebuffer of a display, closed by its destructor. One thread at a time, and never together with
/// Picture() of its port.
class Framebuffer {
  public:
    virtual ~Framebuffer() = default;

    /// Reads a rectangle that counts from the display's left bottom corner into \p pixels: 32 bits each, the
    /// bytes in memory b, g, r, 255, bottom row first, rows without gaps. An empty rectangle reads nothing.
    /// 0, or -1 with \p pixels undefined.
    virtual int Read(int x, int y, int width, int height, void* pixels) = 0;
};

/// Hears which parts of the desktop were drawn anew.
class RefreshListener {
  public:
    virtual ~RefreshListener() = default;

    /// \p areas in desktop coordinates, in no order, as coarse or fine as the machine likes. On the main
    /// thread, from its run loop; it must not take long.
    virtual void ScreenRefreshed(std::span<const Rect> areas) = 0;
};

/// Hears that displays came, went, moved or changed their size.
class DisplaysListener {
  public:
    virtual ~DisplaysListener() = default;

    /// Once for one change or for several: the displays themselves tell what is different. On the main
    /// thread, from its run loop.
    virtual void DisplaysChanged() = 0;
};

/// The machine's displays and the pixels they show.
///
/// ActiveDisplays, MainDisplay, Bounds, ProductName and IsCaptured may be called from any thread. Picture is
/// called by one thread at a time: its callers serialise themselves, since they share the pixels that it
/// returns.
class Displays {
  public:
    virtual ~Displays() = default;

    /// Fills \p ids with the displays in use, in the machine's order. 0, or -1 when they can't be listed.
    virtual int ActiveDisplays(std::vector<DisplayId>& ids) = 0;

    /// The display that the user made the main one, else the one at the desktop's origin; 0 when there is
    /// none.
    virtual DisplayId MainDisplay() = 0;

    /// The place of a display; an empty rectangle for an unknown id.
    virtual Rect Bounds(DisplayId id) = 0;

    /// What the display is called, in UTF-8; empty when the machine doesn't know.
    virtual std::string ProductName(DisplayId id) = 0;

    /// The pixels of \p area as the screen shows them now, without the pointer. Places where the desktop ends
    /// are black. \p image may have more pixels than the area (a scaled display), never fewer.
    /// 0, or -1 without a picture: an empty or absurd area, or a machine whose displays went away.
    virtual int Picture(const Rect& area, Image& image) = 0;

    /// Opens the framebuffer of a display where it is now; to be closed before the port goes. Null when there
    /// is no such display. Any thread.
    virtual std::unique_ptr<Framebuffer> OpenFramebuffer(DisplayId id) = 0;

    /// Begins to tell \p listener of what is drawn from now on, through the run loop of the current host, and
    /// ends that. A listener stays its owner's, registers once, and unregisters before it or the host goes;
    /// no call comes afterwards. Main thread only, and not from inside a call. Without listeners the machine
    /// has no work with it.
    virtual void RegisterRefreshListener(RefreshListener& listener) = 0;
    virtual void UnregisterRefreshListener(RefreshListener& listener) = 0;

    /// The same for changes of the displays themselves. Where those never change nothing is to be done.
    virtual void RegisterDisplaysListener(DisplaysListener& /*listener*/) {}
    virtual void UnregisterDisplaysListener(DisplaysListener& /*listener*/) {}

    /// True while nobody hears what changes on the display, since a program has it to itself or the machine
    /// can't tell. It has to be captured whole then. 0 asks for the main display.
    virtual bool IsCaptured(DisplayId id) = 0;

    /// Whether windows can let shine through what lies behind them. Main thread.
    virtual bool IsComposited() { return false; }
};

} // namespace host
