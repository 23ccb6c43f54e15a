#pragma once

#include "vnSnapshot.h"
#include "zList.h"

class vnFocus;
class zString;

/// The capture front: the one device that services and panel see. It holds a device for each display and
/// turns the user's choice, a display or a focus, into a Grab on the right device with the right insets.
/// Nothing scales.
///
/// Callers hold the application's shared lock around every use, except for the flags.
class vnConfigurableSnapshot : public vnSnapshot {
  public:
    vnConfigurableSnapshot() = default;
    ~vnConfigurableSnapshot() override;

    vnSnapshotBuffer* NewBuffer() override;
    bool IsScreenSaverActive() override;
    void SetIgnoreScreenDiffs(bool ignore) override;
    void SetPaused(bool paused) override;
    void EnableVideo(bool enable) override;
    void EnableAudio(bool enable) override;
    int MouseInfo(zRect& rect, zBuffer& image, int& rowBytes, int& colorSpace) override;
    int Grab(vnSnapshotBuffer** buffer, const zRect& crop, zRect* captured) override;
    zRect MaximumRect() override;
    void FollowDisplay() override;

    /// Takes ownership of \p device, under a copy of \p name. Nothing if either is null.
    void AddDevice(const char* name, vnSnapshot* device);
    int Device_Count() const;

    /// Copies the name of a device. 0, or -1 without one.
    int Device_Name(int index, zString& name) const;

    /// Stores the index, whether or not a device lies at it; -1 is how a caller asks for choice by focus.
    /// 0 if a device lies at it, else -1.
    int SetCurrentDeviceByIndex(int index);
    int CurrentDeviceIndex() const { return fCurrentDeviceIndex; }

    /// The device, not given away; null without one.
    vnSnapshot* DeviceSnapshotByIndex(int index) const;
    vnSnapshot* CurrentDeviceSnapshot() const;

    /// Sets what decides the rectangle, not owned; null for none. Forgets the last focused rectangle.
    void SetFocus(vnFocus* focus);

  protected:
    int do_open() override;
    void do_close() override;

    /// The device at the current index, else the one that the focus lies on; null without either.
    vnSnapshot* current_snapshot() const;

  private:
    bool focus_rect(zRect& rect) const;
    bool has_last_focus_rect() const;
    vnSnapshot* choose_device(const zRect& rect) const;

    zList<zString*> fDeviceNames;
    zList<vnSnapshot*> fDevices;
    int fCurrentDeviceIndex = -1;
    vnFocus* fFocus = nullptr;
    zRect fLastFocusRect;
};
