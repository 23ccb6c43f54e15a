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

TEST_F(SnapshotServiceTest, RepliesWithOneElementAndOnePicture) {
    ASSERT_EQ(Call("sNAPSHOT"), 0);
    EXPECT_EQ(ReplyXML(), "<response error=\"0\" instance=\"4000000000\" picture=\"cid:id_snapshot_image\" "
                          "rect=\"0,0,63,47\" mouse_location=\"18,9\" mouse_id=\"1\" />\n");
    ASSERT_EQ(attachments.Count(), 1U);
    const uint8_t* jpeg = attachments[0]->Data();
    EXPECT_EQ(jpeg[0] << 8 | jpeg[1], 0xFFD8);
    EXPECT_STREQ(multipart.AsCString("Content-Type", ""), "multipart/related");
    ASSERT_EQ(multipart.ChildCount(), 2U);
    EXPECT_EQ(multipart.Child(1)->AsInt32("__data_size", 0), attachments[0]->Size());
    EXPECT_STREQ(multipart.Child(1)->AsCString("Content-Type", ""), "image/jpg");
    EXPECT_STREQ(multipart.Child(1)->AsCString("Content-ID", ""), "<id_snapshot_image>");
}

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

TEST_F(SnapshotServiceTest, AbsurdCropsFailAndDoNoHarm) {
    constexpr int kHuge = 0x7FFFFFFF;
    ASSERT_EQ(Call("Snapshot"), 0);
    EXPECT_EQ(SnapshotWithCrop(100, 100, 0, 0), -1);
    EXPECT_EQ(SnapshotWithCrop(kHuge, 0, 0, kHuge), -1);
    EXPECT_EQ(SnapshotWithCrop(-kHuge - 1, -kHuge - 1, -kHuge - 1, 5), -1);
    EXPECT_EQ(SnapshotWithCrop(-1000000, 0, -1000000, -5000), -1);
    EXPECT_EQ(Call("Snapshot"), 0);
    // These leave the captured rectangle as it was: the next client must not inherit their failure.
    EXPECT_EQ(SnapshotWithCrop(5000, 0, 0, 0), -1);
    EXPECT_EQ(Call("Snapshot"), 0);
    SnapshotWithCrop(-kHuge - 1, 0, -kHuge - 1,
                     0); // Wraps to the size at hand, so that only the worker fails.
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
