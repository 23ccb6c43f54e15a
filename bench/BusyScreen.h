#pragma once

#include <xcb/xcb.h>

/// Someone who works on an X screen: shows parts of two prepared pictures, which look like windows full of
/// text, in turns.
class BusyScreen {
  public:
    /// Shows the first picture. Ends the program when the display can't be used.
    explicit BusyScreen(const char* display);
    ~BusyScreen();
    BusyScreen(const BusyScreen&) = delete;
    BusyScreen& operator=(const BusyScreen&) = delete;

    /// Replaces a rectangle by the same part of the other picture; done when it returns.
    void Change(int x, int y, int width, int height);

    int Width() const { return fWidth; }
    int Height() const { return fHeight; }

  private:
    xcb_pixmap_t prepare(unsigned seed);
    void sync();

    xcb_connection_t* fXcb;
    const xcb_screen_t* fScreen;
    int fWidth;
    int fHeight;
    xcb_gcontext_t fPen;
    xcb_pixmap_t fPictures[2];
    int fNext = 1;
};
