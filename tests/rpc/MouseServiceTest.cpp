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

} // namespace
