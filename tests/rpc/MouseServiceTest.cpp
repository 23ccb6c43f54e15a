#include <memory>

#include <gtest/gtest.h>

#include "FakeHost.h"
#include "vnRPC_SnapshotMouse.h"
#include "vnSnapshotBuffer.h"
#include "vnSnapshot_cg.h"
#include "zCritical.h"
#include "zRecord.h"
#include "zXMLRPC.h"

namespace {

constexpr uint32_t kInstance = 4000000000U;

class MouseServiceTest : public testing::Test {
  protected:
    ~MouseServiceTest() override {
        attachments.RemoveAndReleaseAll();
        service->Release();
    }

    /// The number of a shape of this size whose every byte is \p value; 0 if there was none.
    uint32_t Look(int width, int height, uint8_t value) {
        machine.pointerWidth = width;
        machine.pointerHeight = height;
        machine.pointerPixels.assign(static_cast<size_t>(width) * static_cast<size_t>(height) * 4, value);
        zPoint location;
        uint32_t id = 0;
        return service->MouseInfo(location, id) == 0 ? id : 0;
    }

    int Ask(uint32_t id) {
        zRecord parameters;
        zRecord request;
        parameters.SetUInt32("mouse_id", id);
        zXMLRPC(request).SetMethod("SnapshotMouse");
        zXMLRPC(request).AppendStructParam(parameters);
        return service->RPC_ExecuteMethod("snapshotmouse", request, reply, multipart, attachments);
    }

    FakeHost machine;
    host::HostScope scope{machine};
    std::unique_ptr<zCritical> lock{zCritical::Factory(1)};
    vnSnapshot_cg device{1};
    vnRPC_SnapshotMouse* service = new vnRPC_SnapshotMouse(lock.get(), &device, kInstance);
    zRecord reply;
    zRecord multipart;
    zList<cBuffer*> attachments;
};

TEST_F(MouseServiceTest, NumbersShapesByTheirPixels) {
    EXPECT_EQ(Look(4, 4, 1), 1U);
    EXPECT_EQ(Look(4, 4, 2), 2U);
    EXPECT_EQ(Look(4, 4, 1), 1U) << "a shape that comes back keeps its number";
    EXPECT_EQ(Look(3, 4, 1), 3U) << "another size never compares";
    EXPECT_EQ(Look(4, 4, 2), 2U);
    EXPECT_EQ(Look(8, 8, 2), 4U);

    ASSERT_EQ(Ask(3), 0) << "a smaller shape in a larger spare buffer has its own size";
    EXPECT_EQ(attachments[0]->Size(), 3 * 4 * 4);
}

TEST_F(MouseServiceTest, AHiddenPointerChangesNothing) {
    machine.pointerVisible = false;
    zPoint location(7, 8);
    uint32_t id = 99;
    EXPECT_EQ(service->MouseInfo(location, id), -1);
    EXPECT_EQ(location, zPoint(7, 8));
    EXPECT_EQ(id, 99U);
    EXPECT_EQ(Ask(1), -1);
    machine.pointerVisible = true;
    EXPECT_EQ(Look(4, 4, 1), 1U);
}

TEST_F(MouseServiceTest, HandsOutAShapeWithItsDescription) {
    machine.pointerLocation = {20, 10};
    machine.hotSpot = {2, 1};
    Look(5, 3, 1);
    Look(5, 3, 200);
    ASSERT_EQ(Ask(2), 0);

    const char* const names[] = {"instance",   "width",          "height",      "rowbytes",
                                 "colorspace", "section_rect_1", "mouse_shape", "error"};
    const char* const values[] = {"4000000000",         "5", "3", "20", "1650946657", "0,0,4,2",
                                  "cid:id_mouse_shape", "0"};
    unsigned int position = 0;
    for (unsigned int i = 0; i < reply.VariableCount(); ++i) {
        if (reply.VariableID(i) == zRecord::kXMLTag)
            continue;
        ASSERT_LT(position, std::size(names));
        EXPECT_STREQ(reply.VariableName(i), names[position]);
        EXPECT_STREQ(reply.AsCString(reply.VariableID(i), ""), values[position]);
        ++position;
    }
    EXPECT_EQ(position, std::size(names));
    ASSERT_EQ(multipart.ChildCount(), 1U);
    EXPECT_STREQ(multipart.Child(0)->AsCString("Content-Type", ""), "application/cursor-binary");
    EXPECT_STREQ(multipart.Child(0)->AsCString("Content-ID", ""), "<id_mouse_shape>");
    EXPECT_EQ(multipart.Child(0)->AsInt32("__data_size", 0), 60);
    ASSERT_EQ(attachments.Count(), 1U);
    EXPECT_EQ(attachments[0]->Data()[59], 200);
}

TEST_F(MouseServiceTest, AnUnknownNumberFails) {
    Look(4, 4, 1);
    for (const uint32_t id : {0U, 2U, 0xFFFFFFFFU}) {
        EXPECT_EQ(Ask(id), -1);
        EXPECT_EQ(reply.AsInt32("error", 0), -1);
        EXPECT_EQ(attachments.Count(), 0U);
    }
    EXPECT_FALSE(service->RPC_ImplementsMethod(nullptr));
    EXPECT_FALSE(service->RPC_ImplementsMethod(""));
    EXPECT_TRUE(service->RPC_ImplementsMethod("SNAPSHOTMOUSE"));
}

} // namespace
