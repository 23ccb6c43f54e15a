#pragma once

#include "Displays.h"
#include "vnSnapshot.h"
#include "zBuffer.h"
#include "zPoint.h"

/// What the capture devices of a display share: the display, its place, and the pointer with its cache.
///
/// Callers hold the application's shared lock, which also guards the cache.
class vnSnapshot_ogl : public vnSnapshot {
  public:
    /// \p display as the displays port numbers it; 0 is the main display.
    explicit vnSnapshot_ogl(host::DisplayId display);
    ~vnSnapshot_ogl() override;

    bool IsScreenSaverActive() override { return false; }
    int MouseInfo(zRect& rect, zBuffer& image, int& rowBytes, int& colorSpace) override;
    zRect MaximumRect() override { return fDeviceRect; }

    /// Moves the device to another display, reopening it there if it is open. 0, or what the opening gave.
    int SetDisplay(host::DisplayId display);

  protected:
    /// Reads the display's place anew.
    void update_device_rect();

    /// Turns crop insets (see vnSnapshot::Grab) into a rectangle that counts from the display's left top
    /// corner.
    zRect local_rect(const zRect& crop) const;

    /// That rectangle in screen coordinates.
    zRect screen_rect(const zRect& local) const;

  private:
    /// The last shape that was fetched. A colour space of 0 means that there is none.
    struct CursorCache {
        uint32_t seed = 0;
        zRect rect;
        zBuffer image;
        int rowBytes = 0;
        int colorSpace = 0;
        zPoint hotSpot;
    };

    int fetch_cursor(zRect& rect, zBuffer& image, int& rowBytes, int& colorSpace, zPoint& hotSpot);
    int cached_cursor(zRect& rect, zBuffer& image, int& rowBytes, int& colorSpace);

    host::DisplayId fDisplay;
    zRect fDeviceRect;
    CursorCache fCursor;
};
