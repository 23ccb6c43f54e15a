#include <cstring>

#include <gtest/gtest.h>

#include "FakeHost.h"
#include "vnSnapshotBuffer.h"
#include "vnSnapshot_cg.h"
#include "vnSnapshot_ogl.h"

namespace {

/// The device with its hidden operations.
class Device : public vnSnapshot_ogl {
  public:
    using vnSnapshot_ogl::do_open;
    using vnSnapshot_ogl::vnSnapshot_ogl;
};

class FramebufferDeviceTest : public testing::Test {
  protected:
    FramebufferDeviceTest() { machine.displays = {{0, 0, 64, 48}, {64, -10, 3000, 2100}}; }
    ~FramebufferDeviceTest() override {
        for (vnSnapshotBuffer* one : {buffer, other}) {
            if (one)
                one->Release();
        }
    }

    FakeHost machine;
    host::HostScope scope{machine};
    vnSnapshotBuffer* buffer = nullptr;
    vnSnapshotBuffer* other = nullptr;
    zRect captured;
};

TEST_F(FramebufferDeviceTest, FramesEqualThoseOfTheOtherDevice) {
    vnSnapshot_ogl device(2);
    vnSnapshot_cg reference(2);
    device.Open();
    reference.Open();
    EXPECT_EQ(device.MaximumRect(), reference.MaximumRect());
    for (const zRect& crop : {zRect(64 + 1000, -10 + 500, 0, 0), zRect(64 + 5, -10 + 7, 2900, 2000),
                              zRect(64 + 2999, -10, 0, 2099)}) {
        zRect expected;
        ASSERT_EQ(device.Grab(&buffer, crop, &captured), 0);
        ASSERT_EQ(reference.Grab(&other, crop, &expected), 0);
        EXPECT_EQ(captured, expected);
        EXPECT_EQ(buffer->Width(), other->Width());
        EXPECT_EQ(buffer->RowBytes(), other->RowBytes());
        EXPECT_EQ(buffer->ColorSpace(), other->ColorSpace());
        ASSERT_EQ(buffer->Size(), other->Size());
        EXPECT_EQ(memcmp(buffer->Data(), other->Data(), static_cast<size_t>(buffer->Size())), 0);
    }
    device.Close();
    reference.Close();
}

TEST_F(FramebufferDeviceTest, IsOpenOnce) {
    Device device(0);
    EXPECT_EQ(device.Grab(&buffer, zRect(), nullptr), -1) << "not open";
    EXPECT_EQ(device.Open(), 0);
    EXPECT_EQ(device.do_open(), -1);
    EXPECT_EQ(machine.openFramebuffers, 1);
    EXPECT_EQ(device.Grab(&buffer, zRect(), &captured), 0) << "the first opening holds";
    EXPECT_EQ(captured, zRect(0, 0, 63, 47)) << "0 is the main display";
    EXPECT_EQ(device.SetDisplay(2), 0);
    EXPECT_EQ(device.MaximumRect(), zRect(64, -10, 3063, 2089));
    EXPECT_EQ(machine.openFramebuffers, 1);
    device.Close();
    EXPECT_EQ(machine.openFramebuffers, 0);

    machine.hasFramebuffer = false;
    EXPECT_EQ(device.Open(), -1);
    EXPECT_EQ(device.Grab(&buffer, zRect(), nullptr), -1);
}

TEST_F(FramebufferDeviceTest, LimitsFramesAndRefusesNegativeOnes) {
    Device device(2);
    device.Open();
    ASSERT_EQ(device.Grab(&buffer, zRect(64, -10, 0, 0), &captured), 0);
    EXPECT_EQ(captured, zRect(64, -10, 64 + 2047, -10 + 2047)) << "at the left top corner";
    const uint8_t* store = buffer->Data();
    ASSERT_EQ(device.Grab(&buffer, zRect(64, -10, 0, 0), nullptr), 0);
    EXPECT_EQ(buffer->Data(), store);

    const zRect before(1, 2, 3, 4);
    captured = before;
    EXPECT_EQ(device.Grab(&buffer, zRect(64 + 3001, -10, 0, 0), &captured), -1);
    EXPECT_EQ(captured, before);
    EXPECT_EQ(buffer->Data(), store);
    EXPECT_EQ(device.Grab(&buffer, zRect(64 + 3000, -10, 0, 0), &captured), 0) << "a width of 0 passes";
    EXPECT_EQ(buffer->Size(), 0);
    machine.pictureResult = -1;
    EXPECT_EQ(device.Grab(&buffer, zRect(64, -10, 0, 0), nullptr), -1);
    EXPECT_EQ(device.Grab(nullptr, zRect(), nullptr), -1);
    device.Close();
}

} // namespace
