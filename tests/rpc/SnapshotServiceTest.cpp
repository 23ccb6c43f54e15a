#include "Await.h"
#include "ServiceFixture.h"
#include "vnRPC_Snapshot.h"

namespace {

/// The worker ticks after every call, so that the test looks at the machine with the lock held.
class SnapshotServiceTest : public ServiceFixture {
  protected:
    SnapshotServiceTest() : ServiceFixture({{0, 0, 64, 48}}) {}
    ~SnapshotServiceTest() override { service->Release(); }

    int Call(const char* method, const zRecord& parameters = {}) {
        return Execute(*service, method, parameters);
    }
    int SnapshotWithCrop(int left, int top, int right, int bottom) {
        zRecord parameters;
        SetCrop(parameters, zRect(left, top, right, bottom));
        return Call("Snapshot", parameters);
    }

    /// Waits until the machine has been asked for that many pictures in all.
    bool WaitForPictures(int count) {
        const auto taken = [this] {
            const zAutoCritical guard(lock.get());
            return machine.pictures;
        };
        return Await([&] { return taken() >= count; }) && taken() == count;
    }

    vnRPC_Snapshot* service = new vnRPC_Snapshot(lock.get(), &front, mouse, nullptr);
};

TEST_F(SnapshotServiceTest, CapturesOnTheSpotOnlyForAFirstFrameAndANewSize) {
    EXPECT_EQ(machine.pictures, 0) << "nothing is captured without a request";
    ASSERT_EQ(Call("Snapshot"), 0);
    ASSERT_TRUE(WaitForPictures(2)) << "the first request's own, and the next frame's";
    ASSERT_EQ(Call("Snapshot"), 0);
    ASSERT_TRUE(WaitForPictures(3));

    ASSERT_EQ(SnapshotWithCrop(4, 0, 0, 8), 0);
    EXPECT_STREQ(reply.AsCString("rect", ""), "4,0,63,39");
    ASSERT_TRUE(WaitForPictures(5));
    // Deliberate: a crop of the same size gets the frame of the old place once.
    ASSERT_EQ(SnapshotWithCrop(0, 8, 4, 0), 0);
    ASSERT_TRUE(WaitForPictures(6));
}

TEST_F(SnapshotServiceTest, AFailedGrabSendsNothingUntilItSucceedsAgain) {
    machine.pictureResult = -1;
    EXPECT_EQ(Call("Snapshot"), -1);
    EXPECT_EQ(attachments.Count(), 0U);
    ASSERT_TRUE(WaitForPictures(2));
    {
        zAutoCritical guard(lock.get());
        machine.pictureResult = 0;
    }
    EXPECT_EQ(Call("Snapshot"), -1) << "the frame at hand is the failed one";
    ASSERT_TRUE(WaitForPictures(3));
    EXPECT_EQ(Call("Snapshot"), 0);
}

TEST_F(SnapshotServiceTest, ReadsTheQualityInAnyCase) {
    zRecord parameters;
    int sizes[3];
    const char* const words[] = {"LOW", "whatever", "hIgh"};
    for (int i = 0; i < 3; ++i) {
        parameters.SetCString("quality", words[i]);
        ASSERT_EQ(Call("Snapshot", parameters), 0);
        sizes[i] = attachments[0]->Size();
    }
    EXPECT_LT(sizes[0], sizes[1]);
    EXPECT_LT(sizes[1], sizes[2]);
}

} // namespace
