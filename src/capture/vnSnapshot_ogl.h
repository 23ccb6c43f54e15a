#pragma once

#include <memory>

#include "Displays.h"
#include "vnSnapshot.h"
#include "zBuffer.h"
#include "zPoint.h"

/// Captures a display by reading its framebuffer, for machines whose picture call isn't to be had. It is also
/// the base of the other device, which shares the display, its place, and the pointer with its cache.
///
/// Callers hold the application's shared lock, which also guards the cache.
class vnSnapshot_ogl : public vnSnapshot {
  public:
    /// \p display as the displays port numbers it; 0 is the main display.
    explicit vnSnapshot_ogl(host::DisplayId display);
    ~vnSnapshot_ogl() override;

    /// The largest extent of a frame, each way: one that would be larger ends at its right or bottom.
    static constexpr int kMaximumExtent = 2048;

    vnSnapshotBuffer* NewBuffer() override;
    bool IsScreenSaverActive() override { return false; }
    int MouseInfo(zRect& rect, zBuffer& image, int& rowBytes, int& colorSpace) override;
    int Grab(vnSnapshotBuffer** buffer, const zRect& crop, zRect* captured) override;
    /// Not Valid() once the display has gone.
    zRect MaximumRect() override { return fDeviceRect; }
    void FollowDisplay() override;

    /// Moves the device to another display, reopening it there if it is open. 0, or what the opening gave.
    int SetDisplay(host::DisplayId display);

  protected:
    /// -1 when it is open already, or when the machine doesn't give the framebuffer away.
    int do_open() override;
    void do_close() override;

    /// Puts a new buffer of the device's own kind in the place of one that isn't, or isn't there.
    void replace_foreign(vnSnapshotBuffer** buffer, uint32_t ownTypeTag);

    /// Where the display is now; not Valid() without it.
    zRect place_of_display() const;

    /// Reads the display's place anew.
    void update_device_rect() { fDeviceRect = place_of_display(); }

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

    int read_into(class vnSnapBuff_ogl& frame, const zRect& local);
    int fetch_cursor(zRect& rect, zBuffer& image, int& rowBytes, int& colorSpace, zPoint& hotSpot);
    int cached_cursor(zRect& rect, zBuffer& image, int& rowBytes, int& colorSpace);

    host::DisplayId fDisplay;
    std::unique_ptr<host::Framebuffer> fContext; ///< Null while closed.
    zRect fDeviceRect;
    CursorCache fCursor;
};
