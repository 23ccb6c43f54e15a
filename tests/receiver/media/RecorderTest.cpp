// A recording of a server that does what the test says.

#include <mutex>

#include <gmock/gmock.h>

#include "BuiltinHost.h"
#include "Interruption.h"
#include "Jpeg.h"
#include "MediaFile.h"
#include "Recorder.h"
#include "ScriptedServer.h"
#include "TestFolder.h"

namespace {

using namespace receiver;
using namespace std::chrono_literals;
using testing::HasSubstr;

constexpr int kSide = 32;

std::string http(const std::string& type, const std::string& body) {
    return "HTTP/1.1 200 OK\r\nContent-Type: " + type + "\r\nContent-Length: " + std::to_string(body.size()) +
           "\r\n\r\n" + body;
}

std::string muted() {
    return http("text/xml", "<response error=\"0\" rect=\"0,0,31,31\" muted=\"1\"/>\n");
}

/// A whole frame of one colour, with a hundredth of a second of sound and an odd byte.
std::string whole(uint8_t level, int instance, int64_t time) {
    std::vector<uint8_t> jpeg;
    const std::vector<uint8_t> pixels(kSide * kSide * 4, level);
    JpegEncoder().Encode(pixels.data(), kSide, kSide, kSide * 4, 90, jpeg);
    const std::string end = "\r\n--b", clock = std::to_string(time);
    return http("multipart/related;boundary=b",
                "--b\r\nContent-Type: text/xml\r\n\r\n<response error=\"0\" timestamp=\"" + clock +
                    "\" instance=\"" + std::to_string(instance) +
                    "\" picture=\"cid:p\" rect=\"0,0,31,31\" section_rect_1=\"0,0,31,31\" "
                    "next_sequence_id=\"3\" section_channels_2=\"2\" section_rate_2=\"44100\" "
                    "audiotimestamp=\"" +
                    clock + "\"/>" + end + "\r\nContent-Type: image/jpg\r\n\r\n" +
                    std::string(jpeg.begin(), jpeg.end()) + end + "\r\nContent-Type: audio/raw\r\n\r\n" +
                    std::string(441 * 4 + 1, '\x10') + end + "--");
}

class RecorderTest : public testing::Test {
  protected:
    /// Records what the script answers to each request, counted from 0; it may raise the interruption.
    Recorder::End Record(const std::function<std::string(int)>& script) {
        ScriptedServer server([&, count = 0](const std::string&) mutable {
            const std::lock_guard lock(mutex);
            return ScriptedServer::Answer{script(count++)};
        });
        Recorder::Settings settings;
        settings.stream.server = {"127.0.0.1", static_cast<uint16_t>(server.Port())};
        settings.format.container = MediaFormat::Container::kNut;
        settings.format.rate = 100;
        settings.stillInterval = 20ms;
        settings.patience = 500ms;
        settings.path = Path();
        Recorder recorder(settings, interruption);
        const Recorder::End end = recorder.Run();
        failure = recorder.Failure();
        return end;
    }
    std::string Path() const { return (folder / "film.nut").string(); }
    static int64_t Elapsed() {
        return std::chrono::duration_cast<std::chrono::microseconds>(
                   std::chrono::steady_clock::now().time_since_epoch())
            .count();
    }

    host::BuiltinHost host;
    const host::HostScope scope{host};
    std::mutex mutex;
    Interruption interruption;
    TestFolder folder;
    std::string failure;
};

TEST_F(RecorderTest, KeepsThePictureWhilePausedAndTheTimeWhenTheClockBeginsAnew) {
    const int64_t begin = Elapsed();
    EXPECT_EQ(Record([&](int count) {
                  if (count == 60)
                      interruption.Raise();
                  if (count < 20)
                      return whole(20, 1, Elapsed());
                  return count < 40 ? muted() : whole(230, 2, Elapsed() - begin);
              }),
              Recorder::End::kInterrupted)
        << failure;
    const double seconds = static_cast<double>(Elapsed() - begin) / 1e6;
    const MediaFile file(Path(), 16, 16);
    ASSERT_GT(file.shots.size(), 40U);
    EXPECT_TRUE(file.IsGrowing());
    EXPECT_LT(file.shots.front().centre, 40);
    EXPECT_LT(file.shots[file.shots.size() / 2].centre, 40) << "the last one stays";
    EXPECT_GT(file.shots.back().centre, 200);
    EXPECT_LT(file.shots.back().time, seconds);
    EXPECT_GT(file.shots.back().time, 0.55);
    EXPECT_TRUE(file.isContinuous);
    EXPECT_LT(file.SoundEnd(), seconds);
    EXPECT_GT(file.SoundEnd(), 0.2);
}

TEST_F(RecorderTest, LeavesNothingBehindWhenNoPictureComes) {
    EXPECT_EQ(Record([](int) { return muted(); }), Recorder::End::kNoPicture);
    EXPECT_THAT(failure, HasSubstr("the source is paused"));
    EXPECT_EQ(Record([](int) { return std::string("what?\r\n\r\n"); }), Recorder::End::kNoPicture);
    EXPECT_THAT(failure, HasSubstr("127.0.0.1"));
    EXPECT_FALSE(std::filesystem::exists(Path()));
}

TEST_F(RecorderTest, SurvivesClocksThatMakeNoSense) {
    constexpr int64_t kTimes[] = {1, std::numeric_limits<int64_t>::max(), -5,
                                  0, std::numeric_limits<int64_t>::min(), 1'000'000};
    const int64_t begin = Elapsed();
    EXPECT_EQ(Record([&](int count) {
                  if (count == 30)
                      interruption.Raise();
                  return whole(20, count / 8, kTimes[count % 6]);
              }),
              Recorder::End::kInterrupted);
    const MediaFile file(Path(), 16, 16);
    EXPECT_TRUE(file.IsGrowing());
    const double seconds = static_cast<double>(Elapsed() - begin) / 1e6;
    EXPECT_LT(file.shots.back().time, seconds + 10) << "clocks may differ by so much";
    EXPECT_LT(file.SoundEnd(), seconds + 10);
}

} // namespace
