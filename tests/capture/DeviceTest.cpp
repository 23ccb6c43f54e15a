// The devices that take frames of a display: by the picture call, and by its framebuffer.

#include <cstring>

#include <gtest/gtest.h>

#include "FakeHost.h"
#include "vnSnapshotBuffer.h"
#include "vnSnapshot_cg.h"
#include "vnSnapshot_ogl.h"

namespace {

constexpr uint32_t kOpaque = 0xFF000000;

class DeviceTest : public testing::Test {
  protected:
    DeviceTest() { machine.displays = {{0, 0, 64, 48}, {64, -10, 3000, 2100}}; }
    ~DeviceTest() override {
        if (buffer)
            buffer->Release();
    }

    uint32_t Pixel(int column, int rowFromBottom) {
        uint32_t pixel;
        memcpy(&pixel, buffer->Data() + rowFromBottom * buffer->RowBytes() + column * 4, sizeof pixel);
        return pixel;
    }
    /// Every pixel tells its place on the desktop.
    void ExpectPixelsOf(const zRect& place) {
        ASSERT_EQ(buffer->Size(), place.Width() * place.Height() * 4);
        EXPECT_EQ(buffer->RowBytes(), place.Width() * 4);
        EXPECT_EQ(buffer->ColorSpace(), kColorSpace_bgra);
        for (int row = 0; row < buffer->Height(); ++row) {
            for (int column = 0; column < buffer->Width(); ++column)
                ASSERT_EQ(Pixel(column, row),
                          FakeHost::PixelAt(place.left + column, place.bottom - row) | kOpaque)
                    << column << "," << row;
        }
    }

    FakeHost machine;
    host::HostScope scope{machine};
    vnSnapshotBuffer* buffer = nullptr;
    zRect captured;
};

TEST_F(DeviceTest, FramesHoldOpaquePixelsBottomRowFirst) {
    vnSnapshot_cg byPicture(2);
    vnSnapshot_ogl byFramebuffer(2);
    for (vnSnapshot* device :
         {static_cast<vnSnapshot*>(&byPicture), static_cast<vnSnapshot*>(&byFramebuffer)}) {
        device->Open();
        const struct {
            zRect crop, place;
        } cases[] = {
            {{64 + 3, -10 + 2, 2900, 2000}, {67, -8, 64 + 99, -10 + 99}},
            {{64 + 1000, -10 + 500, 0, 0}, {1064, 490, 64 + 2999, -10 + 2099}},
            {{64 + 2999, -10, 0, 2099}, {3063, -10, 3063, -10}},
        };
        for (const auto& one : cases) {
            ASSERT_EQ(device->Grab(&buffer, one.crop, &captured), 0);
            EXPECT_EQ(captured, one.place);
            ExpectPixelsOf(one.place);
        }
        device->Close();
    }
    machine.scale = 2;
    byPicture.Open();
    ASSERT_EQ(byPicture.Grab(&buffer, {64 + 3, -10 + 2, 2900, 2000}, &captured), 0);
    ExpectPixelsOf(captured);
    byPicture.Close();
}

TEST_F(DeviceTest, AFramebuffersFramesAreLimitedAndNeverNegative) {
    vnSnapshot_ogl device(2);
    EXPECT_EQ(device.Grab(&buffer, zRect(), nullptr), -1) << "not open";
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
    EXPECT_EQ(device.Grab(&buffer, zRect(64 + 3000, -10, 0, 0), &captured), 0) << "a width of 0 passes";
    EXPECT_EQ(buffer->Size(), 0);
    machine.pictureResult = -1;
    EXPECT_EQ(device.Grab(&buffer, zRect(64, -10, 0, 0), nullptr), -1);
    device.Close();
}

TEST_F(DeviceTest, PointerShapesAreStoredBottomRowFirstAtTheirLeftTopCorner) {
    for (size_t i = 0; i < machine.pointerPixels.size(); ++i)
        machine.pointerPixels[i] = static_cast<uint8_t>(i);
    vnSnapshot_cg device(1);
    zBuffer image;
    int rowBytes = 0;
    int colorSpace = 0;
    machine.pointerLocation = {20.9, 10};
    ASSERT_EQ(device.MouseInfo(captured, image, rowBytes, colorSpace), 0);
    EXPECT_EQ(captured, zRect(18, 9, 21, 11)) << "location less hot spot, truncated";
    EXPECT_EQ(rowBytes, 16);
    EXPECT_EQ(static_cast<uint32_t>(colorSpace), kColorSpace_argb);
    EXPECT_EQ(image.Data()[0], 32) << "the lowest row comes first";
    EXPECT_EQ(image.Data()[32], 0);

    machine.pointerLocation = {1.5, 0};
    machine.hotSpot = {2, 0};
    ASSERT_EQ(device.MouseInfo(captured, image, rowBytes, colorSpace), 0);
    EXPECT_EQ(captured.left, 0) << "truncated towards zero, in floating point";
}

} // namespace
