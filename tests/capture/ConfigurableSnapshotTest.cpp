#include <gtest/gtest.h>

#include "vnConfigurableSnapshot.h"
#include "vnFocus.h"
#include "vnSnapshotBuffer.h"

namespace {

/// A device that only notes what reaches it.
class NotingDevice : public vnSnapshot {
  public:
    explicit NotingDevice(const zRect& bounds) : fBounds(bounds) {}

    vnSnapshotBuffer* NewBuffer() override { return new vnSnapBuff_cg; }
    bool IsScreenSaverActive() override { return false; }
    int MouseInfo(zRect&, zBuffer&, int&, int&) override { return 0; }
    int Grab(vnSnapshotBuffer**, const zRect& crop, zRect*) override {
        ++grabs;
        insets = crop;
        return 0;
    }
    zRect MaximumRect() override { return fBounds; }

    int grabs = 0;
    zRect insets;

  protected:
    int do_open() override { return 0; }
    void do_close() override {}

  private:
    zRect fBounds;
};

class ScriptedFocus : public vnFocus {
  public:
    int Rect(zRect& rect) override {
        if (result == 0)
            rect = answer;
        return result;
    }
    zRect answer;
    int result = 0;
};

/// Two displays side by side, the second larger.
class ConfigurableSnapshotTest : public testing::Test {
  protected:
    ConfigurableSnapshotTest() {
        front.AddDevice("left", left);
        front.AddDevice("right", right);
    }
    ~ConfigurableSnapshotTest() override {
        if (buffer)
            buffer->Release();
    }

    NotingDevice* left = new NotingDevice(zRect(0, 0, 1023, 767));
    NotingDevice* right = new NotingDevice(zRect(1024, 0, 2303, 1023));
    vnConfigurableSnapshot front;
    ScriptedFocus focus;
    vnSnapshotBuffer* buffer = nullptr; ///< One reference, once there is one. Never filled.
};

TEST_F(ConfigurableSnapshotTest, TurnsAFocusAndACropIntoInsetsOfTheDevice) {
    front.SetCurrentDeviceByIndex(1);
    front.Grab(&buffer, zRect(1, 2, 3, 4), nullptr);
    EXPECT_EQ(right->insets, zRect(1, 2, 3, 4)) << "without a focus the crop goes on as it is";

    focus.answer = zRect(1100, 100, 1299, 299);
    front.SetFocus(&focus);
    front.Grab(&buffer, zRect(1, 2, 3, 4), nullptr);
    EXPECT_EQ(right->insets, zRect(1101, 102, 2303 - 1299 + 3, 1023 - 299 + 4));
    EXPECT_EQ(front.MaximumRect(), focus.answer);
}

TEST_F(ConfigurableSnapshotTest, ChoosesTheDeviceThatTheFocusLiesOnMost) {
    struct {
        zRect rect;
        NotingDevice* expected;
    } const cases[] = {
        {zRect(10, 10, 99, 99), left},     {zRect(1100, 10, 1199, 99), right},
        {zRect(724, 0, 1423, 767), right}, // 300 columns on the left display, 400 on the right
        {zRect(624, 0, 1323, 767), left},  // 400 and 300, equally high
        {zRect(624, 0, 1323, 900), right}, // the right one is narrower but higher
    };
    front.SetFocus(&focus);
    for (const auto& one : cases) {
        const int before = one.expected->grabs;
        focus.answer = one.rect;
        EXPECT_EQ(front.Grab(&buffer, zRect(), nullptr), 0);
        EXPECT_EQ(one.expected->grabs, before + 1) << one.rect.left << ".." << one.rect.bottom;
    }
}

TEST_F(ConfigurableSnapshotTest, KeepsCapturingWhereAWindowLastStood) {
    front.SetFocus(&focus);
    focus.result = -1;
    EXPECT_EQ(front.Grab(&buffer, zRect(), nullptr), -1) << "no rectangle was ever had";

    focus.result = 0;
    focus.answer = zRect(1100, 100, 1299, 299);
    ASSERT_EQ(front.Grab(&buffer, zRect(), nullptr), 0);
    focus.result = -1;
    EXPECT_EQ(front.Grab(&buffer, zRect(), nullptr), 0);
    EXPECT_EQ(right->grabs, 2);
    EXPECT_EQ(front.MaximumRect(), focus.answer);

    front.SetFocus(&focus);
    EXPECT_EQ(front.Grab(&buffer, zRect(), nullptr), -1) << "a new focus forgets the old place";
}

} // namespace
