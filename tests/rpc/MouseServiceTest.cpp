#include "ServiceFixture.h"

namespace {

class MouseServiceTest : public ServiceFixture {
  protected:
    MouseServiceTest() : ServiceFixture({{0, 0, 64, 48}}) {}

    /// The number of a shape of this size whose every byte is \p value; 0 if there was none.
    uint32_t Look(int width, int height, uint8_t value) {
        machine.pointerWidth = width;
        machine.pointerHeight = height;
        machine.pointerPixels.assign(static_cast<size_t>(width) * static_cast<size_t>(height) * 4, value);
        zPoint location;
        uint32_t id = 0;
        return mouse->MouseInfo(location, id) == 0 ? id : 0;
    }

    int Ask(uint32_t id) {
        zRecord parameters;
        parameters.SetUInt32("mouse_id", id);
        return Execute(*mouse, "snapshotmouse", parameters);
    }
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
    EXPECT_EQ(mouse->MouseInfo(location, id), -1);
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

    EXPECT_EQ(ReplyXML(), "<response instance=\"4000000000\" width=\"5\" height=\"3\" rowbytes=\"20\" "
                          "colorspace=\"1650946657\" section_rect_1=\"0,0,4,2\" "
                          "mouse_shape=\"cid:id_mouse_shape\" error=\"0\" />\n");
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
}

} // namespace
