// What comes in any shape and at any time makes a file that players can follow.

#include <gmock/gmock.h>

#include "MediaFile.h"
#include "MediaWriter.h"
#include "TestFolder.h"

namespace {

using namespace receiver;

class MediaWriterTest : public testing::Test {
  protected:
    void Open(MediaFormat::Container container, int width, int height, bool hasSound = true) {
        MediaFormat format;
        format.container = container;
        format.hasSound = hasSound;
        std::string reason;
        ASSERT_TRUE(writer.Open(Path(), false, format, width, height, reason)) << reason;
    }
    std::string Path() const { return (folder / "recording").string(); }

    bool Show(int width, int height, uint8_t level, int64_t time) {
        const std::vector<uint8_t> pixels(static_cast<size_t>(width * height * 4), level);
        return writer.SetPicture(pixels.data(), width, height, width * 4) && writer.WritePicture(time);
    }
    /// So many sample frames of one value.
    void Play(int16_t value, size_t frames, int64_t time, int channels = 2, int rate = 44100) {
        const std::vector<int16_t> samples(frames * static_cast<size_t>(channels), value);
        ASSERT_TRUE(writer.WriteSound({reinterpret_cast<const uint8_t*>(samples.data()), samples.size() * 2},
                                      channels, rate, time));
    }

    TestFolder folder;
    MediaWriter writer{nullptr};
};

TEST_F(MediaWriterTest, KeepsTheSizeOfTheFirstPicture) {
    Open(MediaFormat::Container::kMatroska, 65, 33, false);
    ASSERT_TRUE(Show(65, 33, 255, 0));
    ASSERT_TRUE(Show(65, 33, 0, 20'000));
    ASSERT_TRUE(Show(640, 80, 255, 20'000)); // At the same time, and of another shape.
    ASSERT_TRUE(Show(1, 200, 255, 10'000));
    ASSERT_TRUE(writer.WritePicture(1'000'000));
    ASSERT_TRUE(writer.Close());
    const MediaFile file(Path(), 32, 16);
    EXPECT_EQ(file.width, 64);
    EXPECT_EQ(file.height, 32);
    EXPECT_TRUE(file.IsGrowing());
    ASSERT_EQ(file.shots.size(), 5U);
    EXPECT_GT(file.shots[0].edge, 225);
    EXPECT_LT(file.shots[1].centre, 25);
    EXPECT_GT(file.shots[2].centre, 225);
    EXPECT_LT(file.shots[2].edge, 25) << "black above what is wide";
    EXPECT_LT(file.shots[3].edge, 25) << "and beside what is tall";
    EXPECT_NEAR(file.shots[4].time, 1, 0.002);
}

TEST_F(MediaWriterTest, TakesTheSmallestPicture) {
    Open(MediaFormat::Container::kMP4, 1, 1);
    ASSERT_TRUE(Show(1, 1, 255, 0));
    ASSERT_TRUE(writer.AdvanceSound(500'000));
    ASSERT_TRUE(writer.Close());
    const MediaFile file(Path(), 0, 0);
    EXPECT_EQ(file.width, 2);
    EXPECT_EQ(file.shots.size(), 1U);
    EXPECT_NEAR(file.SoundEnd(), 0.5, 0.03) << "the sound that never came is silence";
}

TEST_F(MediaWriterTest, KeepsTheOldFileWhenTheNewOneCannotBeEncoded) {
    folder.Write("recording", "kept");
    std::string reason;
    EXPECT_FALSE(writer.Open(Path(), true, MediaFormat(), 100'000, 2, reason));
    EXPECT_THAT(reason, testing::HasSubstr("libx264"));
    EXPECT_EQ(folder.Read("recording"), "kept");
}

TEST_F(MediaWriterTest, PutsSoundWhereItBelongs) {
    Open(MediaFormat::Container::kNut, 16, 16);
    ASSERT_TRUE(Show(16, 16, 0, 0));
    Play(1000, 4410, -10'000);           // What was before the start is cut,
    Play(2000, 4410, 90'000 + 3'000);    // a little jitter is not heard,
    Play(3000, 4410, 300'000);           // what is missing is silence,
    Play(4000, 4410, 300'000);           // and what comes twice is cut.
    Play(5000, 4800, 400'000, 1, 48000); // Mono comes from both sides, at half its power.
    Play(6000, 44, -60'000'000);
    ASSERT_TRUE(writer.AdvanceSound(700'000)); // It doesn't come any more.
    ASSERT_TRUE(writer.Close());
    const MediaFile file(Path(), 0, 0);
    EXPECT_TRUE(file.isContinuous);
    EXPECT_NEAR(file.soundStart, 0, 0.001);
    EXPECT_NEAR(file.SoundEnd(), 0.7, 0.4) << "for a while it might still come";
    const struct {
        double time;
        int value;
    } expected[] = {{0.001, 1000}, {0.089, 1000}, {0.091, 2000}, {0.189, 2000}, {0.191, 0},
                    {0.299, 0},    {0.301, 3000}, {0.399, 3000}, {0.45, 3535}};
    for (const auto& [time, value] : expected)
        EXPECT_NEAR(file.sound.at(static_cast<size_t>(time * 44100)) * 32768, value, 5) << time;
}

TEST_F(MediaWriterTest, StretchesADriftAway) {
    Open(MediaFormat::Container::kNut, 16, 16);
    ASSERT_TRUE(Show(16, 16, 0, 0));
    // 441 frames in 10.005 ms: the sound is 500 ppm slow, 30 ms in a minute.
    int64_t time = 0;
    for (; time < 60'000'000; time += 10'005)
        Play(1000, 441, time);
    ASSERT_TRUE(writer.Close());
    const MediaFile file(Path(), 0, 0);
    EXPECT_NEAR(file.SoundEnd(), static_cast<double>(time) / 1e6, 0.008);
    EXPECT_GT(*std::min_element(file.sound.begin() + 100, file.sound.end() - 100), 0.03) << "no hole";
}

} // namespace
