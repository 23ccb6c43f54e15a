#include <chrono>

#include "Await.h"
#include "ServiceFixture.h"
#include "vnRPC_SnapshotByDiffs.h"

namespace {

constexpr const char* kWithAudio = "snapshotbydiffsWITHAUDIO";

/// Ticks are the test's own: it doesn't tell the service that data was sent, unless it wants to see the
/// worker.
class DiffServiceTest : public ServiceFixture {
  protected:
    DiffServiceTest() : ServiceFixture({{0, 0, 640, 480}, {0, 0, 2049, 100}, {0, 0, 2048, 100}}) {}
    ~DiffServiceTest() override { service->Release(); }

    int Call(uint32_t sequenceId, const zRect& crop = {}, const char* method = "SnapshotByDiffs") {
        zRecord parameters;
        parameters.SetUInt32("sequence_id", sequenceId);
        SetCrop(parameters, crop);
        return Execute(*service, method, parameters);
    }
    uint32_t Next() const { return reply.AsUInt32("next_sequence_id", 0); }
    unsigned int Pictures() const { return attachments.Count(); }
    std::string Section(int number) const {
        return reply.AsCString(("section_rect_" + std::to_string(number)).c_str(), "none");
    }
    void Change(const std::vector<host::Rect>& areas) {
        machine.Refresh(areas);
        service->SignalThread_Tick();
    }
    /// Plays until a call brings sound: its source starts in the background.
    bool AwaitSound() {
        return Await([this] {
            EXPECT_EQ(Call(3, {}, kWithAudio), 0);
            if (reply.ExistsName("audiotimestamp"))
                return true;
            machine.Play(std::vector<float>(960));
            EXPECT_TRUE(machine.AwaitTaken());
            return false;
        });
    }

    vnRPC_SnapshotByDiffs* service = new vnRPC_SnapshotByDiffs(lock.get(), &front, mouse);
};

TEST_F(DiffServiceTest, BeginsWithAWholeFrameAndThenSendsWhatChanges) {
    EXPECT_EQ(machine.pictures, 0) << "nothing is captured without a request";
    machine.microseconds = 1234567;
    ASSERT_EQ(Call(0), 0);
    EXPECT_EQ(
        ReplyXML(),
        "<response timestamp=\"1234567\" section_rect_1=\"0,0,639,479\" error=\"0\" instance=\"4000000000\" "
        "picture=\"cid:id_snapshot_image\" rect=\"0,0,639,479\" next_sequence_id=\"3\" "
        "mouse_location=\"18,9\" mouse_id=\"1\" />\n");
    EXPECT_STREQ(multipart.AsCString("Content-Type", ""), "multipart/related");
    ASSERT_EQ(multipart.ChildCount(), 2U);
    EXPECT_STREQ(multipart.Child(1)->AsCString("Content-ID", ""), "<id_snapshot_image>");

    service->SignalThread_Tick();
    ASSERT_EQ(Call(3, {}, "sNAPSHOTbyDIFFS"), 0);
    EXPECT_EQ(ReplyXML(),
              "<response timestamp=\"1234567\" error=\"0\" instance=\"4000000000\" rect=\"0,0,639,479\" "
              "next_sequence_id=\"3\" mouse_location=\"18,9\" mouse_id=\"1\" />\n");
    EXPECT_EQ(Pictures(), 0U);
    EXPECT_EQ(machine.pictures, 1) << "an idle screen is not captured";

    Change({{100, 50, 16, 32}, {500, 400, 1, 1}});
    ASSERT_EQ(Call(3), 0);
    EXPECT_EQ(Pictures(), 2U);
    EXPECT_EQ(multipart.ChildCount(), 3U);
    EXPECT_EQ(Section(1), "96,48,127,95") << "on a grid of 16 from the frame's edges";
    EXPECT_EQ(Section(2), "496,400,511,415");
    EXPECT_EQ(Next(), 4U) << "one state for all that changed in a tick";
    ASSERT_EQ(Call(4), 0);
    EXPECT_EQ(Pictures(), 0U);
    EXPECT_EQ(Next(), 4U);
}

TEST_F(DiffServiceTest, SendsEachClientWhatItHasNotSeen) {
    ASSERT_EQ(Call(0), 0);
    Change({{0, 0, 1, 1}});      // 3
    Change({{300, 0, 1, 1}});    // 4
    Change({{0, 300, 1, 1}});    // 5
    Change({{1000, 0, 50, 50}}); // Not on this display.
    const struct {
        uint32_t sequenceId;
        std::vector<std::string> sections;
    } rows[] = {
        {0, {"0,0,639,479"}},
        {1, {"0,0,15,15", "288,0,303,15", "0,288,15,303"}},
        {3, {"0,0,15,15", "288,0,303,15", "0,288,15,303"}},
        {4, {"288,0,303,15", "0,288,15,303"}},
        {5, {"0,288,15,303"}},
        {6, {}},
        {7, {}},
        {0xFFFFFFFF, {}},
    };
    for (const auto& row : rows) {
        ASSERT_EQ(Call(row.sequenceId), 0);
        EXPECT_EQ(Next(), 6U);
        ASSERT_EQ(Pictures(), row.sections.size()) << row.sequenceId;
        for (size_t i = 0; i < row.sections.size(); ++i)
            EXPECT_EQ(Section(static_cast<int>(i) + 1), row.sections[i]) << row.sequenceId;
    }
}

TEST_F(DiffServiceTest, KeepsDiffsOfTenStatesAndReusesTheirBuffers) {
    ASSERT_EQ(Call(0), 0);
    for (int i = 0; i < 40; ++i)
        Change({{0, i * 12.0, 1, 1}});
    ASSERT_EQ(Next(), 3U);
    ASSERT_EQ(Call(1), 0);
    EXPECT_EQ(Next(), 43U);
    EXPECT_EQ(Pictures(), 11U) << "states 32 to 42; a client further behind waits for the refresh";
    EXPECT_EQ(reply.AsCString("section_rect_12", "none"), std::string("none"));
}

TEST_F(DiffServiceTest, ForcesAWholeFrameEvery242Ticks) {
    ASSERT_EQ(Call(0), 0); // Tick 1.
    for (int tick = 2; tick <= 500; ++tick) {
        const int before = machine.pictures;
        service->SignalThread_Tick();
        EXPECT_EQ(machine.pictures - before, tick == 243 || tick == 485 ? 1 : 0) << tick;
    }
    ASSERT_EQ(Call(3), 0);
    EXPECT_EQ(Next(), 7U);
    EXPECT_EQ(Section(1), "0,0,639,479");
}

TEST_F(DiffServiceTest, CapturesWholeFramesWhileChangesGoUnreported) {
    ASSERT_EQ(Call(0), 0);
    for (const bool ignored : {false, true}) {
        machine.captured = !ignored;
        front.SetIgnoreScreenDiffs(ignored);
        const uint32_t before = Next();
        service->SignalThread_Tick();
        ASSERT_EQ(Call(before), 0);
        EXPECT_EQ(Next(), before + 2);
        EXPECT_EQ(Section(1), "0,0,639,479");
    }
}

TEST_F(DiffServiceTest, SendsNothingWhileMutedAndAWholeFrameAfterwards) {
    ASSERT_EQ(Call(0), 0);
    front.SetPaused(true);
    Change({{0, 0, 1, 1}});
    const int before = machine.pictures;
    ASSERT_EQ(Call(3), 0);
    EXPECT_EQ(ReplyXML(), "<response error=\"0\" rect=\"0,0,639,479\" muted=\"1\" />\n");
    EXPECT_EQ(attachments.Count(), 0U);
    service->RPC_DataSent();
    front.SetPaused(false);
    service->SignalThread_Stop(); // Whatever the worker was asked for, it has done.
    EXPECT_EQ(machine.pictures, before) << "no tick";

    ASSERT_EQ(Call(3), 0);
    EXPECT_EQ(Section(1), "0,0,639,479");
    EXPECT_EQ(Next(), 6U);
    EXPECT_EQ(Pictures(), 1U) << "the diff from before the mute is gone";
}

TEST_F(DiffServiceTest, ANewSizeStartsOver) {
    ASSERT_EQ(Call(0), 0);
    Change({{0, 0, 1, 1}});
    ASSERT_EQ(Call(3, zRect(32, 16, 0, 0)), 0);
    EXPECT_EQ(Section(1), "32,16,639,479");
    EXPECT_EQ(Pictures(), 1U);
    EXPECT_EQ(Next(), 6U);
    ASSERT_EQ(Call(6, zRect(32, 16, 0, 0)), 0);
    EXPECT_EQ(Next(), 6U) << "the frame that came with the new size was enough";
    service->SignalThread_Tick();
    ASSERT_EQ(Call(6, zRect(32, 16, 0, 0)), 0);
    EXPECT_EQ(Next(), 6U);

    // Deliberate: with a crop, a diff comes from another place than the change, and says so. The frame has
    // grown by it, so that the next request starts over.
    Change({{48, 32, 1, 1}});
    ASSERT_EQ(Call(6, zRect(32, 16, 0, 0)), 0);
    EXPECT_EQ(Section(1), "16,16,63,47");
    EXPECT_STREQ(reply.AsCString("rect", ""), "16,16,639,479");
    ASSERT_EQ(Call(7, zRect(32, 16, 0, 0)), 0);
    EXPECT_EQ(Section(1), "32,16,639,479");

    // A crop of just the size that the frame has grown to finds no pixels of that size.
    Change({{48, 32, 1, 1}});
    ASSERT_EQ(Call(Next(), zRect(32, 16, 0, 0)), 0);
    ASSERT_EQ(Call(0, zRect(16, 16, 0, 0)), 0);
}

TEST_F(DiffServiceTest, StreamsWholeFramesWhereTheyAreTooLargeForDiffs) {
    for (const int index : {1, 2}) {
        front.SetCurrentDeviceByIndex(index);
        ASSERT_EQ(Call(0), 0);
        Change({{60, 0, 1, 1}});
        ASSERT_EQ(Call(Next()), 0);
        EXPECT_EQ(Section(1), index == 1 ? "0,0,2048,99" : "48,0,63,3");
    }
}

TEST_F(DiffServiceTest, AFailedGrabSendsNothingUntilOneSucceeds) {
    machine.pictureResult = -1;
    EXPECT_EQ(Call(0), -1);
    machine.pictureResult = 0;
    EXPECT_EQ(Call(0), -1) << "the size is right, and the frame at hand is the failed one";
    Change({{0, 0, 1, 1}});
    EXPECT_EQ(Call(0), 0) << "a diff that succeeds lets requests through, without a frame to send";
    EXPECT_EQ(Pictures(), 0U);
    service->SignalThread_Tick();
    EXPECT_EQ(Call(1), 0);
    EXPECT_EQ(Section(1), "0,0,639,479") << "which comes next";

    // The last grab of a tick counts; an entry whose pixels and size don't fit each other is left out.
    Change({{0, 0, 200, 200}});
    machine.pictureResult = -1;
    for (int i = 0; i < 12; ++i)
        Change({{0, 0, 1, 1}});
    machine.pictureResult = 0;
    EXPECT_EQ(Call(1), -1);
    Change({{600, 0, 1, 1}});
    EXPECT_EQ(Call(1), 0);
}

TEST_F(DiffServiceTest, AddsTheSoundSinceTheLastCall) {
    const std::vector<float> second(2 * 48000, 0.5F);
    machine.microseconds = 5'000'000;
    ASSERT_EQ(Call(0), 0);
    EXPECT_EQ(machine.operations, 0) << "the other method doesn't touch the sound";
    ASSERT_EQ(Call(0, {}, kWithAudio), 0);
    EXPECT_EQ(Pictures(), 1U) << "nothing was heard yet";
    EXPECT_FALSE(reply.ExistsName("audiotimestamp"));
    ASSERT_TRUE(AwaitSound());
    ASSERT_EQ(Call(3, {}, kWithAudio), 0) << "a gap, which sets the clock";

    for (const bool withPicture : {true, false}) {
        for (int block = 0; block < 20; ++block)
            machine.Play({second.begin(), second.begin() + 4800});
        ASSERT_TRUE(machine.AwaitTaken());
        const int section = withPicture ? 2 : 1;
        ASSERT_EQ(Call(withPicture ? 0 : 3, {}, kWithAudio), 0);
        EXPECT_EQ(reply.ExistsName("picture"), withPicture);
        ASSERT_EQ(attachments.Count(), static_cast<unsigned>(section));
        const zRecord& sound = *multipart.Child(section);
        const int bytes = attachments[static_cast<unsigned>(section) - 1]->Size();
        EXPECT_STREQ(sound.AsCString("Content-Type", ""), "audio/raw");
        EXPECT_STREQ(sound.AsCString("Audio-Content-ID", ""), "<id_audio>");
        EXPECT_NEAR(bytes, 44100 * 4, 400);
        const std::string number = std::to_string(section);
        EXPECT_EQ(reply.AsUInt32(("section_channels_" + number).c_str(), 0), 2U);
        EXPECT_EQ(reply.AsUInt32(("section_rate_" + number).c_str(), 0), 44100U);
        const int64_t seconds = withPicture ? 6'000'000 : 7'000'000;
        EXPECT_NEAR(static_cast<double>(reply.AsInt64("audiotimestamp", 0)), static_cast<double>(seconds),
                    5000);
    }

    front.EnableAudio(false);
    machine.Play({0.5F, 0.5F});
    ASSERT_EQ(Call(3, {}, kWithAudio), 0);
    EXPECT_EQ(attachments.Count(), 0U);
    front.EnableAudio(true);
    EXPECT_TRUE(AwaitSound()) << "a new source";
}

TEST_F(DiffServiceTest, EachReplyThatHasLeftIsOneTick) {
    ASSERT_EQ(Call(0), 0);
    {
        zAutoCritical guard(lock.get());
        machine.Refresh({{0, 0, 1, 1}});
    }
    service->RPC_DataSent();
    EXPECT_TRUE(Await([this] { return Call(3) == 0 && Next() == 4; }));
    EXPECT_EQ(Section(1), "0,0,15,15");
}

} // namespace
