// A stream from a server that says what the test wants, and nothing at all, and too much.

#include <mutex>

#include <gmock/gmock.h>

#include "Interruption.h"
#include "Jpeg.h"
#include "RealReply.h"
#include "ScriptedServer.h"
#include "Stream.h"

namespace {

using namespace receiver;
using Event = Stream::Event;
using testing::HasSubstr;

/// One picture of a colour at a place of the frame.
RealReply picture(const std::string& frame, const std::string& place, int width, int height, uint8_t colour,
                  int sequence, int instance = 7) {
    std::vector<uint8_t> jpeg;
    const std::vector<uint8_t> pixels(static_cast<size_t>(width * height * 4), colour);
    JpegEncoder().Encode(pixels.data(), width, height, width * 4, 95, jpeg);
    RealReply reply("whole");
    const std::string boundary = "--MimeBoundary_8923gr836bidfb3i";
    reply.body = boundary + "\r\nContent-Type: text/xml\r\n\r\n<response timestamp=\"" +
                 std::to_string(sequence * 1000) + "\" section_rect_1=\"" + place +
                 "\" error=\"0\" instance=\"" + std::to_string(instance) + "\" picture=\"cid:x\" rect=\"" +
                 frame + "\" next_sequence_id=\"" + std::to_string(sequence) + "\"/>\r\n" + boundary +
                 "\r\nContent-Type: image/jpg\r\n\r\n" + std::string(jpeg.begin(), jpeg.end()) + "\r\n" +
                 boundary + "--";
    return reply;
}

class StreamTest : public testing::Test {
  protected:
    /// A server whose answers come in turn; the last one again and again.
    void Serve(std::vector<ScriptedServer::Answer> answers) {
        server =
            std::make_unique<ScriptedServer>([this, answers, next = size_t{0}](const std::string&) mutable {
                const std::lock_guard lock(mutex);
                return answers[std::min(next++, answers.size() - 1)];
            });
        Stream::Settings settings;
        settings.server = {"127.0.0.1", static_cast<uint16_t>(server->Port())};
        settings.limits = limits;
        settings.rate = 0;
        stream = std::make_unique<Stream>(settings, &interruption);
    }
    void ExpectAsked(int sequence) {
        EXPECT_THAT(server->Request(), HasSubstr(">" + std::to_string(sequence) + "</")) << "as sequence id";
    }
    /// The canvas at a place; -1 outside.
    int At(int x, int y) const {
        const Canvas& canvas = stream->Picture();
        return canvas.IsEmpty() || x >= canvas.Width() || y >= canvas.Height() ? -1 : canvas.Row(y)[x * 4];
    }

    Interruption interruption;
    Connection::Limits limits;
    std::mutex mutex;
    std::unique_ptr<ScriptedServer> server;
    std::unique_ptr<Stream> stream;
};

TEST_F(StreamTest, ComposesWholeFramesAndChanges) {
    RealReply tall = picture("100,50,131,65", "100,50,131,65", 32, 16, 200, 3);
    Serve({{tall.Bytes()},
           {picture("100,50,131,65", "116,50,131,57", 16, 8, 90, 4).Bytes()},  // Right and at the top.
           {picture("300,50,331,65", "300,58,315,65", 16, 8, 30, 5).Bytes()},  // The frame has moved.
           {picture("284,50,331,65", "284,50,299,65", 16, 16, 60, 6).Bytes()}, // It has grown, for now.
           {picture("284,50,331,65", "284,50,315,65", 32, 16, 60, 7).Bytes()}, // It was at its next place.
           {picture("284,50,315,65", "284,50,299,65", 16, 15, 70, 8).Bytes()}, // Another size than its place.
           {tall.Bytes()}});
    EXPECT_EQ(stream->Poll(), Event::kPicture);
    ExpectAsked(0);
    EXPECT_NEAR(At(20, 4), 200, 3);
    EXPECT_EQ(stream->Poll(), Event::kPicture);
    ExpectAsked(3);
    EXPECT_NEAR(At(20, 4), 90, 3);
    EXPECT_NEAR(At(20, 12), 200, 3) << "pictures travel bottom row first";
    EXPECT_EQ(stream->PictureTime(), 3000) << "when the reply before left";
    EXPECT_EQ(stream->Poll(), Event::kPicture);
    EXPECT_NEAR(At(20, 4), 90, 3);
    EXPECT_NEAR(At(4, 12), 30, 3);
    EXPECT_EQ(stream->Poll(), Event::kIdle);
    EXPECT_EQ(stream->Picture().Width(), 32);
    EXPECT_EQ(stream->Poll(), Event::kPicture);
    EXPECT_EQ(stream->Picture().Frame(), zRect(284, 50, 315, 65));
    EXPECT_NEAR(At(20, 12), 60, 3);
    EXPECT_EQ(stream->Poll(), Event::kFailed);
    EXPECT_THAT(stream->Failure(), HasSubstr("size"));
    EXPECT_EQ(stream->Poll(), Event::kPicture) << "a whole frame repairs it";
    ExpectAsked(0);
    EXPECT_EQ(stream->Measured().wholeFrames, 3U);
    EXPECT_EQ(stream->Measured().changes, 2U);
}

TEST_F(StreamTest, BeginsAnewWhereItMayHaveMissedSomething) {
    const std::string frame = "0,0,31,15", place = "0,0,15,15";
    const RealReply whole = picture(frame, frame, 32, 16, 200, 3);
    Serve({{picture(frame, place, 16, 16, 90, 3).Bytes()}, // Changes of what isn't here.
           {whole.Bytes()},
           {picture(frame, place, 16, 16, 90, 15).Bytes()}, // More states ahead than are kept.
           {whole.Bytes()},
           {picture(frame, place, 16, 16, 90, 4, 8).Bytes()}, // By another run of the server.
           {whole.Bytes()},
           {RealReply("muted").Bytes()}});
    EXPECT_EQ(stream->Poll(), Event::kIdle);
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(stream->Poll(), Event::kPicture);
        ExpectAsked(0);
        EXPECT_EQ(stream->Poll(), Event::kIdle);
        ExpectAsked(3);
        EXPECT_NEAR(At(4, 4), 200, 3);
    }
    EXPECT_EQ(stream->Restarts(), 1);
    EXPECT_EQ(stream->Poll(), Event::kPicture);
    EXPECT_EQ(stream->Poll(), Event::kMuted);
    EXPECT_NEAR(At(4, 4), 200, 3) << "the last picture stays";
}

TEST_F(StreamTest, ServersThatFailCostTimeAndNothingElse) {
    limits = {.seconds = 0.5, .bytes = 100'000};
    const RealReply whole = picture("0,0,31,15", "0,0,31,15", 32, 16, 200, 3);
    const std::string bytes = whole.Bytes();
    const std::string endless = "HTTP/1.1 200 OK\r\nContent-Length: 99999999\r\n\r\n";
    Serve({{bytes},
           {bytes.substr(0, bytes.size() / 2), ScriptedServer::kClose},
           {bytes, ScriptedServer::kKeepOpen, 100}, // A drop at a time.
           {"", ScriptedServer::kKeepOpen},         // Nothing at all, as where a method fails.
           {endless + std::string(5'000'000, 'x'), ScriptedServer::kKeepOpen},
           {"HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n"},
           {"\x16\x03\x01 rubbish", ScriptedServer::kClose},
           {bytes}});
    EXPECT_EQ(stream->Poll(), Event::kPicture);
    for (const char* reason :
         {"no connection", "no reply", "no reply", "more than", "404", "no connection"}) {
        EXPECT_EQ(stream->Poll(), Event::kFailed);
        EXPECT_THAT(stream->Failure(), HasSubstr(reason));
        EXPECT_GT(stream->NextPoll(), Stream::Clock::now()) << "it waits before it comes back";
        EXPECT_NEAR(At(4, 4), 200, 3) << "the last picture stays";
    }
    EXPECT_EQ(stream->FailureCount(), 6);
    EXPECT_EQ(stream->Poll(), Event::kPicture);
    EXPECT_EQ(stream->FailureCount(), 0);
}

TEST_F(StreamTest, AnInterruptionEndsAPollAtOnce) {
    limits.seconds = 600;
    Serve({{"", ScriptedServer::kKeepOpen}});
    std::jthread other([this] {
        const auto bound = Stream::Clock::now() + std::chrono::seconds(20);
        while (server->Connections() == 0 && Stream::Clock::now() < bound)
            std::this_thread::yield();
        interruption.Raise();
    });
    EXPECT_EQ(stream->Poll(), Event::kFailed);
    EXPECT_FALSE(interruption.WaitUntil(Stream::Clock::now() + std::chrono::hours(1)));
}

TEST(JpegTest, TurnsPicturesWithoutDecodingWhereThatIsExact) {
    // Two halves, whole blocks each.
    std::vector<uint8_t> pixels(32 * 32 * 4, 200), jpeg, turned;
    std::fill_n(pixels.begin(), 32 * 16 * 4, uint8_t{50});
    JpegEncoder encoder;
    ASSERT_TRUE(encoder.Encode(pixels.data(), 32, 32, 32 * 4, 80, jpeg));
    ASSERT_TRUE(encoder.Flip(jpeg, turned));
    // The canvas takes pictures bottom row first, so that the one that was turned comes out as it was.
    StreamReply reply;
    reply.frame = zRect(32, 32);
    reply.pictures = {{reply.frame, turned}};
    Canvas canvas;
    std::string reason;
    ASSERT_TRUE(canvas.Draw(reply, reason)) << reason;
    EXPECT_NEAR(canvas.Row(4)[0], 50, 3);
    EXPECT_NEAR(canvas.Row(28)[0], 200, 3);

    ASSERT_TRUE(encoder.Encode(pixels.data(), 32, 24, 32 * 4, 80, jpeg));
    EXPECT_FALSE(encoder.Flip(jpeg, turned)) << "half a block row would stay behind";
    EXPECT_FALSE(encoder.Flip({}, turned));
}

TEST(FiguresTest, PercentilesAndDriftComeOutOfNoise) {
    Histogram histogram;
    EXPECT_EQ(histogram.Percentile(0.5), 0);
    for (int i = 1; i <= 1000; ++i)
        histogram.Add(i * 0.1);
    EXPECT_NEAR(histogram.Percentile(0.5), 50, 2);
    EXPECT_NEAR(histogram.Percentile(0.99), 99, 3);
    EXPECT_EQ(histogram.Percentile(1), histogram.Largest());

    ClockDrift drift;
    for (int64_t time = 0; time < 60'000'000; time += 16'000) {
        const int64_t delay = 300 + time * 7919 % 20'011; // Now and then hardly any.
        drift.Add(1'000'000 + time + time / 10'000, time + delay);
    }
    EXPECT_NEAR(drift.PartsPerMillion(), 100, 10);
}

} // namespace
