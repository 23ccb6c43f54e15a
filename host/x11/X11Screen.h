#pragma once

#include <string>
#include <vector>

#include "ComposedPicture.h"
#include "X11Grabber.h"

namespace host {

/// A monitor of a screen, or the whole screen where the server knows no monitors.
struct X11Monitor {
    std::string name; ///< In the server's bytes; empty for the whole screen.
    PixelRect place;
    bool isPrimary = false;
};

/// The monitors and pixels of a screen, over one connection.
class X11Screen {
  public:
    X11Screen(const X11Connection& connection, X11Transport transport);

    /// The monitors, one at least. 0, or -1. Any thread.
    int Monitors(std::vector<X11Monitor>& monitors) const;

    /// As Displays::Picture. One thread at a time.
    int Picture(const Rect& area, Image& image);

    X11Transport Transport() const { return fGrabber.Transport(); }

  private:
    int list_randr_monitors(std::vector<X11Monitor>& monitors) const;

    const X11Connection& fConnection;
    X11Grabber fGrabber;
    PixelRect fScreen; ///< As of the last picture.
    ComposedPicture fComposed;
};

} // namespace host
