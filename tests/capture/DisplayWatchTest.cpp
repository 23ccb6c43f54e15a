#include <gtest/gtest.h>

#include "FakeHost.h"
#include "vnConfigurableSnapshot.h"
#include "vnDisplayWatch.h"
#include "vnFocusManager.h"
#include "vnFocusRect.h"
#include "vnSnapshotBuffer.h"
#include "vnSnapshot_cg.h"
#include "zCritical.h"

namespace {

TEST(DisplayWatch, DevicesAndFocusFollowTheDisplays) {
    FakeHost machine;
    const host::HostScope scope(machine);
    machine.displays = {{0, 0, 64, 48}, {64, 0, 32, 16}};
    const std::unique_ptr<zCritical> lock(zCritical::Factory(1));
    vnFocusManager focus;
    vnConfigurableSnapshot front;
    front.AddDevice("by the picture call", new vnSnapshot_cg(1));
    front.AddDevice("by its framebuffer", new vnSnapshot_ogl(2));
    front.SetCurrentDeviceByIndex(0);
    front.Open();
    vnSnapshotBuffer* frame = front.NewBuffer();
    const auto grab = [&](int index, const zRect& crop, zRect* captured) {
        return front.DeviceSnapshotByIndex(index)->Grab(&frame, crop, captured);
    };
    {
        const vnDisplayWatch watch(*lock, front, &focus);
        const std::vector<host::Rect> changes[] = {
            {{0, 0, 64, 48}, {64, 0, 16, 8}}, {{0, 0, 64, 48}}, {{10, 20, 5, 5}, {64, 0, 16, 8}}, {},
            {{10, 20, 5, 5}, {64, 0, 16, 8}},
        };
        for (const auto& places : changes) {
            machine.ChangeDisplays(places);
            for (int index = 0; index < 2; ++index) {
                const bool isThere = static_cast<size_t>(index) < places.size();
                const host::Rect now = isThere ? places[static_cast<size_t>(index)] : host::Rect();
                const zRect place = zRect::FromOriginAndSize(now.x, now.y, now.width, now.height);
                zRect captured;
                EXPECT_EQ(front.DeviceSnapshotByIndex(index)->MaximumRect(), place);
                EXPECT_EQ(grab(index, {place.left, place.top, 0, 0}, &captured), isThere ? 0 : -1);
                EXPECT_EQ(captured, isThere ? place : zRect());
            }
            EXPECT_EQ(machine.openFramebuffers, places.size() > 1);
            zRect focused;
            focus.Rect(focused);
            EXPECT_EQ(focused, front.DeviceSnapshotByIndex(0)->MaximumRect());
        }
        machine.ChangeDisplays({});
        EXPECT_EQ(grab(0, {0, 0, -100, -100}, nullptr), -1) << "nor what lies beside a display that has gone";
    }
    EXPECT_TRUE(machine.displaysListeners.empty());
    front.Close();
    frame->Release();
}

} // namespace
