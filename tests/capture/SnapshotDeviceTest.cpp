#include <cstring>

#include <gtest/gtest.h>

#include "FakeHost.h"
#include "vnSnapshotBuffer.h"
#include "vnSnapshot_cg.h"

namespace {

constexpr uint32_t kOpaque = 0xFF000000;

class SnapshotDeviceTest : public testing::Test {
  protected:
    SnapshotDeviceTest() { machine.displays = {{0, 0, 64, 48}, {64, -10, 32, 24}}; }
    ~SnapshotDeviceTest() override {
        if (buffer)
            buffer->Release();
    }

    uint32_t Pixel(int column, int rowFromBottom) {
        uint32_t pixel;
        memcpy(&pixel, buffer->Data() + rowFromBottom * buffer->RowBytes() + column * 4, sizeof pixel);
        return pixel;
    }

    FakeHost machine;
    host::HostScope scope{machine};
    vnSnapshotBuffer* buffer = nullptr;
    zRect captured;
};

TEST_F(SnapshotDeviceTest, FramesHoldOpaquePixelsBottomRowFirst) {
    for (const int scale : {1, 2}) {
        machine.scale = scale;
        vnSnapshot_cg device(2);
        device.Open();
        ASSERT_EQ(device.Grab(&buffer, zRect(64 + 3, -10 + 2, 4, 5), &captured), 0);
        EXPECT_EQ(captured, zRect(67, -8, 64 + 31 - 4, -10 + 23 - 5));
        EXPECT_EQ(buffer->Width(), captured.Width());
        EXPECT_EQ(buffer->Height(), captured.Height());
        EXPECT_EQ(buffer->RowBytes(), captured.Width() * 4);
        EXPECT_EQ(buffer->ColorSpace(), kColorSpace_bgra);
        EXPECT_EQ(buffer->Size(), captured.Width() * captured.Height() * 4);
        for (int row = 0; row < buffer->Height(); ++row) {
            for (int column = 0; column < buffer->Width(); ++column)
                ASSERT_EQ(Pixel(column, row),
                          FakeHost::PixelAt(captured.left + column, captured.bottom - row) | kOpaque)
                    << "scale " << scale << " at " << column << "," << row;
        }
        device.Close();
    }
}

TEST_F(SnapshotDeviceTest, AbsurdCropsFailWithoutHarm) {
    vnSnapshot_cg device(1);
    device.Open();
    constexpr int kHuge = 0x7FFFFFFF;
    const zRect before(1, 2, 3, 4);
    for (const zRect& crop :
         {zRect(65, 0, 0, 0), zRect(0, 0, 0, 60), zRect(kHuge, 0, 0, 0), zRect(0, 0, kHuge, kHuge),
          zRect(-kHuge - 1, 0, 0, 0), zRect(0, -kHuge - 1, 0, 0)}) {
        captured = before;
        EXPECT_EQ(device.Grab(&buffer, crop, &captured), -1);
        EXPECT_EQ(captured, before) << "a negative extent leaves it alone";
    }
    // These ask for more memory than there is sense in; the fake would happily paint them.
    for (const zRect& crop : {zRect(-100000, -100000, 0, 0), zRect(0, 0, -1000000000, -1000000000)})
        EXPECT_EQ(device.Grab(&buffer, crop, &captured), -1);
    EXPECT_EQ(machine.pictures, 0);
    EXPECT_EQ(device.Grab(&buffer, zRect(64, 0, 0, 0), &captured), -1) << "a width of 0 has no picture";
    EXPECT_EQ(device.Grab(nullptr, zRect(), nullptr), -1);

    EXPECT_EQ(device.Grab(&buffer, zRect(), nullptr), 0) << "and the device works on";
    device.Close();
}

class PointerTest : public SnapshotDeviceTest {
  protected:
    PointerTest() {
        for (size_t i = 0; i < machine.pointerPixels.size(); ++i)
            machine.pointerPixels[i] = static_cast<uint8_t>(i);
    }
    int Look() { return device.MouseInfo(rect, image, rowBytes, colorSpace); }

    vnSnapshot_cg device{1};
    zRect rect{9, 9, 9, 9};
    zBuffer image;
    int rowBytes = 9;
    int colorSpace = 9;
};

TEST_F(PointerTest, ShapesAreStoredBottomRowFirstAtTheirLeftTopCorner) {
    machine.pointerLocation = {20.9, 10};
    ASSERT_EQ(Look(), 0);
    EXPECT_EQ(rect, zRect(18, 9, 21, 11)) << "location less hot spot, truncated";
    EXPECT_EQ(rowBytes, 16);
    EXPECT_EQ(static_cast<uint32_t>(colorSpace), kColorSpace_argb);
    EXPECT_EQ(image.Data()[0], 32) << "the lowest row comes first";
    EXPECT_EQ(image.Data()[32], 0);

    machine.pointerLocation = {1.5, 0};
    machine.hotSpot = {2, 0};
    ASSERT_EQ(Look(), 0);
    EXPECT_EQ(rect.left, 0) << "truncated towards zero, in floating point";
}

TEST_F(PointerTest, OnlyTheSystemsThatCacheShapesSaveTheFetch) {
    struct {
        uint32_t version;
        int fetches;
    } const cases[] = {{0x1039, 2}, {0x1040, 1}, {0x1058, 1}, {0x1060, 2}, {0x1080, 2}};
    for (const auto& one : cases) {
        machine.systemVersion = one.version;
        machine.pointerPictures = 0;
        machine.pointerLocation = {20, 10};
        ++machine.pointerSeed;
        Look();
        zBuffer first;
        first.SetAndCopyData(image.Data(), image.Size(), 0);
        image.MakeEmpty();
        machine.pointerLocation = {30, 40};
        ASSERT_EQ(Look(), 0);
        EXPECT_EQ(machine.pointerPictures, one.fetches) << std::hex << one.version;
        EXPECT_EQ(rect, zRect(28, 39, 31, 41)) << "a cached shape follows the pointer";
        ASSERT_EQ(image.Size(), first.Size());
        EXPECT_EQ(memcmp(image.Data(), first.Data(), first.Size()), 0);
    }
}

} // namespace
