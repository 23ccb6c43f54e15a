#include "vnConfigurableSnapshot.h"

#include "vnFocus.h"
#include "vnSnapshotBuffer.h"
#include "zPoint.h"
#include "zString.h"

namespace {

/// The largest extent that a client is told of for a display.
constexpr int kMaximumExtent = 2048;

void limit_extents(zRect& rect) {
    if (rect.Width() > kMaximumExtent)
        rect.right = rect.left + kMaximumExtent - 1;
    if (rect.Height() > kMaximumExtent)
        rect.bottom = rect.top + kMaximumExtent - 1;
}

} // namespace

vnConfigurableSnapshot::~vnConfigurableSnapshot() {
    fDeviceNames.RemoveAndDeleteAll();
    fDevices.RemoveAndDeleteAll();
}

vnSnapshotBuffer* vnConfigurableSnapshot::NewBuffer() {
    vnSnapshot* device = current_snapshot();
    return device ? device->NewBuffer() : nullptr;
}

bool vnConfigurableSnapshot::IsScreenSaverActive() {
    vnSnapshot* device = current_snapshot();
    return device && device->IsScreenSaverActive();
}

void vnConfigurableSnapshot::SetIgnoreScreenDiffs(bool ignore) {
    vnSnapshot::SetIgnoreScreenDiffs(ignore);
    for (vnSnapshot* device : fDevices)
        device->SetIgnoreScreenDiffs(IgnoreScreenDiffs());
}

void vnConfigurableSnapshot::SetPaused(bool paused) {
    vnSnapshot::SetPaused(paused);
    for (vnSnapshot* device : fDevices)
        device->SetPaused(IsPaused());
}

void vnConfigurableSnapshot::EnableVideo(bool enable) {
    vnSnapshot::EnableVideo(enable);
    for (vnSnapshot* device : fDevices)
        device->EnableVideo(VideoIsEnabled());
}

void vnConfigurableSnapshot::EnableAudio(bool enable) {
    vnSnapshot::EnableAudio(enable);
    for (vnSnapshot* device : fDevices)
        device->EnableAudio(AudioIsEnabled());
}

int vnConfigurableSnapshot::MouseInfo(zRect& rect, zBuffer& image, int& rowBytes, int& colorSpace) {
    vnSnapshot* device = current_snapshot();
    return device ? device->MouseInfo(rect, image, rowBytes, colorSpace) : -1;
}

int vnConfigurableSnapshot::Grab(vnSnapshotBuffer** buffer, const zRect& crop, zRect* captured) {
    if (!buffer)
        return -1;
    if (!*buffer)
        *buffer = NewBuffer();

    zRect focus;
    bool haveRect = focus_rect(focus);
    vnSnapshot* device = CurrentDeviceSnapshot();
    if (!device && !haveRect && has_last_focus_rect()) {
        // A window that has gone keeps being captured where it last stood.
        focus = fLastFocusRect;
        haveRect = true;
    }
    if (!device && haveRect)
        device = choose_device(focus);
    if (!device)
        return -1;
    if (!haveRect)
        return device->Grab(buffer, crop, captured);

    const zRect bounds = device->MaximumRect();
    const zRect insets(zRect::Add(crop.left, focus.left), zRect::Add(crop.top, focus.top),
                       zRect::Add(crop.right, zRect::Subtract(bounds.right, focus.right)),
                       zRect::Add(crop.bottom, zRect::Subtract(bounds.bottom, focus.bottom)));
    fLastFocusRect = focus;
    return device->Grab(buffer, insets, captured);
}

zRect vnConfigurableSnapshot::MaximumRect() {
    zRect rect;
    if (focus_rect(rect))
        return rect;
    if (vnSnapshot* device = CurrentDeviceSnapshot()) {
        rect = device->MaximumRect();
        limit_extents(rect);
        return rect;
    }
    return has_last_focus_rect() ? fLastFocusRect : zRect();
}

void vnConfigurableSnapshot::FollowDisplay() {
    for (vnSnapshot* device : fDevices)
        device->FollowDisplay();
}

void vnConfigurableSnapshot::AddDevice(const char* name, vnSnapshot* device) {
    if (!name || !device)
        return;
    fDeviceNames.Append(new zString(name));
    fDevices.Append(device);
}

int vnConfigurableSnapshot::Device_Count() const {
    return static_cast<int>(fDeviceNames.Count());
}

int vnConfigurableSnapshot::Device_Name(int index, zString& name) const {
    const zString* found = index >= 0 ? fDeviceNames[static_cast<unsigned int>(index)] : nullptr;
    if (!found)
        return -1;
    name = *found;
    return 0;
}

int vnConfigurableSnapshot::SetCurrentDeviceByIndex(int index) {
    fCurrentDeviceIndex = index;
    return CurrentDeviceSnapshot() ? 0 : -1;
}

vnSnapshot* vnConfigurableSnapshot::DeviceSnapshotByIndex(int index) const {
    return index >= 0 ? fDevices[static_cast<unsigned int>(index)] : nullptr;
}

vnSnapshot* vnConfigurableSnapshot::CurrentDeviceSnapshot() const {
    return DeviceSnapshotByIndex(fCurrentDeviceIndex);
}

void vnConfigurableSnapshot::SetFocus(vnFocus* focus) {
    fFocus = focus;
    fLastFocusRect = zRect(0, 0);
}

int vnConfigurableSnapshot::do_open() {
    for (vnSnapshot* device : fDevices)
        device->Open();
    return 0;
}

void vnConfigurableSnapshot::do_close() {
    for (vnSnapshot* device : fDevices)
        device->Close();
}

vnSnapshot* vnConfigurableSnapshot::current_snapshot() const {
    if (vnSnapshot* device = CurrentDeviceSnapshot())
        return device;
    zRect focus;
    return focus_rect(focus) ? choose_device(focus) : nullptr;
}

bool vnConfigurableSnapshot::focus_rect(zRect& rect) const {
    return fFocus && fFocus->Rect(rect) == 0;
}

bool vnConfigurableSnapshot::has_last_focus_rect() const {
    // An unset rectangle, all zero, measures 1 by 1.
    return fLastFocusRect.Width() >= 2;
}

vnSnapshot* vnConfigurableSnapshot::choose_device(const zRect& rect) const {
    vnSnapshot* choice = nullptr;
    zRect best;
    for (vnSnapshot* device : fDevices) {
        const zRect shared = device->MaximumRect().Intersection(rect);
        // Deliberate: wider or taller is enough, and a device beside the rectangle may win for a moment. A
        // source that spans displays keeps going to the one that it always went to.
        if (shared.Width() <= best.Width() && shared.Height() <= best.Height())
            continue;
        choice = device;
        best = shared;
    }
    return choice;
}
