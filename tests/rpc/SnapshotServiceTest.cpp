#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "FakeHost.h"
#include "vnConfigurableSnapshot.h"
#include "vnRPC_Snapshot.h"
#include "vnRPC_SnapshotMouse.h"
#include "vnRemoteControlInterface.h"
#include "vnSnapshotBuffer.h"
#include "vnSnapshot_cg.h"
#include "zBuffer.h"
#include "zCritical.h"
#include "zRecord.h"
#include "zThread.h"
#include "zXML.h"
#include "zXMLRPC.h"

namespace {

class NotingRemoteControl : public vnRemoteControlInterface {
  public:
    int GetMenus(zRecord& out) override {
        out.SetCString("title", "menus");
        return 0;
    }
    int SetSourceFromMenuItem(zRecord& item) override {
        chosen = item.AsCString("title", "");
        return -1;
    }
    std::string chosen;
};

/// The service on a fake machine of 64 by 48 pixels. The worker ticks after every call, so that the test
/// looks at the machine with the lock held.
class SnapshotServiceTest : public testing::Test {
  protected:
    SnapshotServiceTest() {
        front.AddDevice("display", new vnSnapshot_cg(1));
        front.SetCurrentDeviceByIndex(0);
        mouse = new vnRPC_SnapshotMouse(lock.get(), &front, 17);
        service = new vnRPC_Snapshot(lock.get(), &front, mouse, remoteControl);
    }
    ~SnapshotServiceTest() override {
        attachments.RemoveAndReleaseAll();
        service->Release();
        mouse->Release();
        remoteControl->Release();
    }

    int Call(const char* method, const zRecord* parameters = nullptr) {
        zRecord request;
        zXMLRPC(request).SetMethod(method);
        if (parameters)
            zXMLRPC(request).AppendStructParam(*parameters);
        reply.MakeEmpty();
        multipart.MakeEmpty();
        attachments.RemoveAndReleaseAll();
        return service->RPC_ExecuteMethod(method, request, reply, multipart, attachments);
    }

    int SnapshotWithCrop(int left, int top, int right, int bottom) {
        zRecord parameters;
        parameters.SetInt32("crop_left", left);
        parameters.SetInt32("crop_top", top);
        parameters.SetInt32("crop_right", right);
        parameters.SetInt32("crop_bottom", bottom);
        return Call("Snapshot", &parameters);
    }

    /// Waits until the machine has been asked for that many pictures in all.
    bool WaitForPictures(int count) {
        for (int round = 0; round < 10000; ++round) {
            {
                zAutoCritical guard(lock.get());
                if (machine.pictures >= count)
                    return machine.pictures == count;
            }
            zThread::MicroSleep(1000);
        }
        return false;
    }

    std::string ReplyXML() {
        zBuffer text;
        zXML::RecordToBuffer(&text, reply, 255, false, false);
        return {text.Data(), text.Size()};
    }

    FakeHost machine;
    host::HostScope scope{machine};
    std::unique_ptr<zCritical> lock{zCritical::Factory(1)};
    vnConfigurableSnapshot front;
    NotingRemoteControl* remoteControl = new NotingRemoteControl;
    vnRPC_SnapshotMouse* mouse = nullptr;
    vnRPC_Snapshot* service = nullptr;
    zRecord reply;
    zRecord multipart;
    zList<cBuffer*> attachments;
};

TEST_F(SnapshotServiceTest, RepliesWithOneElementAndOnePicture) {
    ASSERT_EQ(Call("sNAPSHOT"), 0);
    EXPECT_EQ(ReplyXML(), "<response error=\"0\" instance=\"17\" picture=\"cid:id_snapshot_image\" "
                          "rect=\"0,0,63,47\" mouse_location=\"18,9\" mouse_id=\"1\" />\n");
    ASSERT_EQ(attachments.Count(), 1U);
    const uint8_t* jpeg = attachments[0]->Data();
    EXPECT_EQ(jpeg[0] << 8 | jpeg[1], 0xFFD8);
    EXPECT_STREQ(multipart.AsCString("Content-Type", ""), "multipart/related");
    ASSERT_EQ(multipart.ChildCount(), 1U);
    EXPECT_EQ(multipart.Child(0)->AsInt32("__data_size", 0), attachments[0]->Size());
    EXPECT_STREQ(multipart.Child(0)->AsCString("Content-Type", ""), "image/jpg");
    EXPECT_STREQ(multipart.Child(0)->AsCString("Content-ID", ""), "<id_snapshot_image>");
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

TEST_F(SnapshotServiceTest, LeavesThePointerOutWhileItIsHidden) {
    machine.pointerVisible = false;
    ASSERT_EQ(Call("Snapshot"), 0);
    EXPECT_FALSE(reply.ExistsName("mouse_location"));
    EXPECT_FALSE(reply.ExistsName("mouse_id"));
    EXPECT_EQ(attachments.Count(), 1U);
}

TEST_F(SnapshotServiceTest, WithoutAnEncoderThePictureIsEmpty) {
    machine.hasExporter = false;
    ASSERT_EQ(Call("Snapshot"), 0);
    EXPECT_EQ(attachments[0]->Size(), 0);
}

TEST_F(SnapshotServiceTest, ReadsTheQualityInAnyCase) {
    zRecord parameters;
    int sizes[3];
    const char* const words[] = {"LOW", "whatever", "hIgh"};
    for (int i = 0; i < 3; ++i) {
        parameters.SetCString("quality", words[i]);
        ASSERT_EQ(Call("Snapshot", &parameters), 0);
        sizes[i] = attachments[0]->Size();
    }
    EXPECT_LT(sizes[0], sizes[1]);
    EXPECT_LT(sizes[1], sizes[2]);
}

TEST_F(SnapshotServiceTest, ControlMethodsAnswerInXMLRPC) {
    zString text;
    int number = 0;
    ASSERT_EQ(Call("CheckConnection"), 0);
    EXPECT_EQ(zXMLRPC(reply).GetStringParam(0, text), 0);
    EXPECT_STREQ(text, "1.0.5");
    ASSERT_EQ(Call("Snapshot_MaximumRect"), 0);
    EXPECT_EQ(zXMLRPC(reply).GetInt32Param(0, &number), 0);
    EXPECT_EQ(number, 64);
    EXPECT_EQ(zXMLRPC(reply).GetInt32Param(1, &number), 0);
    EXPECT_EQ(number, 48);

    zRecord menus;
    ASSERT_EQ(Call("GetMenus"), 0);
    EXPECT_EQ(zXMLRPC(reply).GetZRecordParam(0, menus), 0);
    EXPECT_STREQ(menus.AsCString("title", ""), "menus");

    zRecord request;
    menus.SetCString("title", "Screen 2");
    zXMLRPC(request).AppendZRecordParam(menus);
    EXPECT_EQ(service->RPC_ExecuteMethod("SetSourceFromMenuItem", request, reply, multipart, attachments), 0)
        << "what the remote control says of it is not passed on";
    EXPECT_EQ(remoteControl->chosen, "Screen 2");

    front.EnableAudio(false);
    EXPECT_EQ(Call("EnableOrDisableAudioOrVideo"), 0);
    EXPECT_EQ(ReplyXML(), "<methodResponse />\n");
    EXPECT_FALSE(front.AudioIsEnabled());
    EXPECT_TRUE(front.VideoIsEnabled());
}

TEST_F(SnapshotServiceTest, WithoutARemoteControlMenusFail) {
    auto* lonely = new vnRPC_Snapshot(lock.get(), &front, mouse, nullptr);
    for (const char* method : {"GetMenus", "SetSourceFromMenuItem", "EnableOrDisableAudioOrVideo"}) {
        zRecord request;
        EXPECT_TRUE(lonely->RPC_ImplementsMethod(method));
        EXPECT_EQ(lonely->RPC_ExecuteMethod(method, request, reply, multipart, attachments), -1);
    }
    zRecord request;
    EXPECT_EQ(lonely->RPC_ExecuteMethod("", request, reply, multipart, attachments), 0);
    EXPECT_EQ(lonely->RPC_ExecuteMethod("Snap", request, reply, multipart, attachments), -1);
    EXPECT_FALSE(lonely->RPC_ImplementsMethod(nullptr));
    lonely->Release();
}

} // namespace
