#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <xcb/xcb.h>

/// What a test does to a screen: paints on the root window, sets its mode, monitors and pointer. Each call
/// has taken effect when it returns.
class XPainter {
  public:
    explicit XPainter(const std::string& display);
    ~XPainter();
    XPainter(const XPainter&) = delete;
    XPainter& operator=(const XPainter&) = delete;

    /// Fills a rectangle with the nearest that the screen has to 0xRRGGBB.
    void Fill(int x, int y, int width, int height, uint32_t colour);

    /// The same, without waiting for it to take effect; Sync does.
    void Draw(int x, int y, int width, int height, uint32_t colour);
    void Sync();

    /// What the screen shows: 0xRRGGBB, rows top first. Only of 24 bits; empty for what isn't on it.
    std::vector<uint32_t> Screenshot(int x, int y, int width, int height);

    /// Runs xrandr on the screen; its exit status.
    int Xrandr(const std::string& arguments);
    /// Gives the screen a mode of another size; false when it can't have one.
    bool SetMode(int width, int height);
    /// \p place as in "300/100x200/100+10+20", extents with their millimetres; a star before the name marks
    /// the primary monitor. False when the server has no monitors.
    bool SetMonitor(const std::string& name, const std::string& place);

    /// Gives the root window a square pointer of \p extent opaque pixels; 0 makes one without a visible
    /// pixel.
    void SetPointer(int extent, int hotX, int hotY, uint32_t colour);
    void MovePointer(int x, int y);

    /// Sends every client a note on the keyboard map.
    void ChangeKeyboardMap();

  private:
    uint32_t pixel(uint32_t colour) const;
    xcb_pixmap_t square(int extent, int size);

    std::string fDisplay;
    xcb_connection_t* fXcb;
    const xcb_screen_t* fScreen;
    xcb_gcontext_t fPen;
};
