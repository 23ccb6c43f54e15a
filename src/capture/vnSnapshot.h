#pragma once

#include <atomic>

#include "zRect.h"

class vnSnapshotBuffer;
class zBuffer;

/// A source of frames: one display, or the front that chooses among them.
///
/// Users open it before the first Grab and close it after the last; the device comes up with the first user
/// and goes down with the last. It takes no lock: callers serialise everything but the flags.
class vnSnapshot {
  public:
    virtual ~vnSnapshot();
    vnSnapshot(const vnSnapshot&) = delete;
    vnSnapshot& operator=(const vnSnapshot&) = delete;

    /// A new buffer of the kind that this device fills, with one reference, which the caller releases. Its
    /// size is 0 until the first Grab. Null when there is no device to make one.
    virtual vnSnapshotBuffer* NewBuffer() = 0;
    virtual bool IsScreenSaverActive() = 0;

    virtual void SetIgnoreScreenDiffs(bool ignore);
    virtual bool IgnoreScreenDiffs() const;
    virtual bool IsPaused() const;
    virtual bool VideoIsEnabled() const;
    virtual bool AudioIsEnabled() const;
    virtual void SetPaused(bool paused);
    virtual void EnableVideo(bool enable);
    virtual void EnableAudio(bool enable);

    /// The pointer's shape and place: \p rect in screen coordinates, \p image with its pixels, bottom row
    /// first, \p colorSpace one of kColorSpace. 0, or -1 with all four untouched when there is nothing to
    /// show.
    virtual int MouseInfo(zRect& rect, zBuffer& image, int& rowBytes, int& colorSpace) = 0;

    /// Captures into \p *buffer, which is replaced if it is null or of another device's kind: owners keep the
    /// pointer, not a copy of it. \p crop holds four insets: left and top in screen coordinates, right and
    /// bottom counted inwards from the device's own right and bottom edge. \p captured, if not null, receives
    /// the rectangle in screen coordinates. 0, or a negative code.
    virtual int Grab(vnSnapshotBuffer** buffer, const zRect& crop, zRect* captured) = 0;

    /// What a Grab without a crop covers, in screen coordinates.
    virtual zRect MaximumRect() = 0;

    /// Closes and opens the device again, if it is open, where its display has another place or size than it
    /// had when it was opened.
    virtual void FollowDisplay() {}

    /// Counts a user; the first one brings the device up. 0, or what that gave.
    int Open();

    /// Ends one Open.
    void Close();

    bool is_open() const { return fOpenCount > 0; }

  protected:
    vnSnapshot() = default;

    virtual int do_open() = 0;
    virtual void do_close() = 0;

  private:
    int fOpenCount = 0;
    std::atomic<bool> fPaused{false};
    std::atomic<bool> fVideoEnabled{true};
    std::atomic<bool> fAudioEnabled{true};
    std::atomic<bool> fIgnoreScreenDiffs{false};
};
