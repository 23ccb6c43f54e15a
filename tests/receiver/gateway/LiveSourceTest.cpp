// The gateway with the test card behind it, and the command that runs it.

#include <csignal>
#include <set>

#include <nlohmann/json.hpp>

#include "Daemon.h"
#include "GatewayFixture.h"
#include "HttpServer.h"
#include "Picture.h"
#include "SoundRing.h"
#include "Stream.h"

namespace {

using namespace receiver;
using testing::HasSubstr;
using testing::StartsWith;

class LiveSourceTest : public GatewayTest {
  protected:
    void SetUp() override {
        ASSERT_NE(daemon.Port(), 0) << daemon.ReadyLine();
        Start(daemon.Port());
    }

    Daemon daemon{{"--host", "builtin"}};
};

TEST_F(LiveSourceTest, TheSnapshotStandsUpright) {
    // What the server shows, whose pictures travel upside down.
    TestClient server(daemon.Port());
    const std::string body = server.Call("Snapshot").value_or(TestClient::Reply()).body;
    Picture shown, snapshot;
    ASSERT_TRUE(shown.Decode(body.substr(body.find("\xFF\xD8\xFF"))));
    ASSERT_TRUE(snapshot.Decode(Get("/snapshot.jpg?pointer=0").body));
    ASSERT_EQ(snapshot.width, 1280);
    ASSERT_EQ(snapshot.height, 720);
    int equal = 0, flipped = 0;
    for (int y = 10; y < 720; y += 20)
        for (int x = 10; x < 1280; x += 20) {
            const uint8_t* pixel = snapshot.At(x, 719 - y);
            const auto colour = static_cast<uint32_t>(pixel[0] << 16 | pixel[1] << 8 | pixel[2]);
            equal += shown.Difference(x, y, colour) < 40;
            flipped += shown.Difference(x, 719 - y, colour) < 40;
        }
    EXPECT_GT(equal, 64 * 36 * 85 / 100) << "all but what moves";
    EXPECT_LT(flipped, equal - 200);
}

TEST_F(LiveSourceTest, StreamsMovingPicturesEventsAndSound) {
    TestClient pictures(Port()), events(Port()), sound(Port());
    Ask(pictures, "/stream");
    Ask(events, "/events");
    Ask(sound, "/audio.wav");

    LiveReader stream(pictures);
    stream.TakeUntil("\r\n\r\n");
    std::set<std::string> different;
    for (int i = 0; i < 10; ++i) {
        Picture picture;
        const std::string part = stream.TakePart();
        ASSERT_TRUE(picture.Decode(part));
        different.insert(part);
    }
    EXPECT_GT(different.size(), 5U);

    LiveReader news(events);
    EXPECT_THAT(news.TakeUntil("\r\n\r\n"), HasSubstr("text/event-stream"));
    EXPECT_TRUE(
        nlohmann::json::accept(news.TakeUntil("\n\n").substr(std::string("event: state\ndata: ").size())));
    std::string event;
    do
        event = news.TakeUntil("\n\n");
    while (!event.empty() && !event.starts_with("event: pointer\ndata: {\"x\":"));
    EXPECT_NE(event, "") << "the pointer shows";

    LiveReader wav(sound);
    wav.TakeUntil("\r\n\r\n");
    const std::string head = wav.Take(44);
    EXPECT_THAT(head, StartsWith("RIFF"));
    EXPECT_EQ(head.substr(8, 8), "WAVEfmt ");
    // The tone of the left side rises through zero a thousand times a second.
    const std::string samples = wav.Take(size_t{2} * SoundRing::kRate * SoundRing::kFrameBytes);
    ASSERT_EQ(samples.size(), size_t{2} * SoundRing::kRate * SoundRing::kFrameBytes);
    int rises = 0;
    for (size_t i = samples.size() / 2; i < samples.size(); i += SoundRing::kFrameBytes) {
        const auto at = [&samples](size_t place) { return static_cast<int8_t>(samples[place + 1]); };
        rises += at(i - SoundRing::kFrameBytes) < 0 && at(i) >= 0;
    }
    EXPECT_NEAR(rises, 1000, 300);
}

TEST_F(LiveSourceTest, LeavesTheSoundToOthersUntilSomebodyListens) {
    TestClient viewer(Port());
    Ask(viewer, "/stream");
    LiveReader stream(viewer);
    stream.TakeUntil("\r\n\r\n");
    ASSERT_NE(stream.TakePart(), "");
    Stream other({.server = {"127.0.0.1", daemon.Port()}, .withSound = true}, nullptr);
    int64_t begin = 0, end = 0; // Of the server's sound clock.
    size_t frames = 0;
    ASSERT_TRUE(Eventually([&] {
        other.Poll();
        if (const auto* sound = other.Sound()) {
            end = sound->endTime;
            frames += begin == 0 ? 0 : sound->FrameCount();
            begin = begin == 0 ? end : begin;
        }
        return end - begin > 1'000'000;
    }));
    EXPECT_NEAR(static_cast<double>(frames), 0.0441 * static_cast<double>(end - begin), 4410);
}

TEST_F(LiveSourceTest, ThePageIsThereAndForeignNamesAreRefused) {
    EXPECT_THAT(Get("/").body, HasSubstr("<canvas"));
    EXPECT_THAT(Get("/page.js").head, HasSubstr("text/javascript"));
    TestClient asker(Port());
    asker.Send("HEAD /stream HTTP/1.1\r\nHost: localhost\r\n\r\n");
    EXPECT_THAT(LiveReader(asker).TakeUntil("\r\n\r\n"),
                testing::AllOf(StartsWith("HTTP/1.1 200"), testing::Not(HasSubstr("Ranges"))));
    EXPECT_EQ(Status(Get("/nothing")), 404);
    for (const char* header :
         {"Host: elsewhere.example\r\n", "Host: localhost\r\nOrigin: http://elsewhere.example\r\n", ""}) {
        TestClient client(Port());
        client.Send("GET /state HTTP/1.1\r\n" + std::string(header) + "\r\n");
        EXPECT_EQ(Status(client.ReadReply().value_or(TestClient::Reply())), 403) << header;
    }
    EXPECT_THAT(Get("/state").head, testing::Not(HasSubstr("Access-Control")));
}

TEST_F(LiveSourceTest, ClientsThatReadNothingHoldUpNobody) {
    std::vector<std::unique_ptr<TestClient>> stalled;
    for (size_t i = 0; i + 4 < HttpServer::kMaxConnections; ++i) {
        stalled.push_back(std::make_unique<TestClient>(Port()));
        Ask(*stalled.back(), i % 2 == 0 ? "/stream" : "/audio.wav");
    }
    TestClient client(Port());
    Ask(client, "/stream");
    LiveReader stream(client);
    stream.TakeUntil("\r\n\r\n");
    for (int i = 0; i < 30; ++i)
        ASSERT_NE(stream.TakePart(), "");

    // More than there is room for are told so; when some have gone there is room again.
    for (int i = 0; i < 4; ++i)
        stalled.push_back(std::make_unique<TestClient>(Port()));
    TestClient tooMany(Port());
    EXPECT_EQ(Status(tooMany.ReadReply().value_or(TestClient::Reply())), 503);
    stalled.resize(8);
    EXPECT_TRUE(Eventually([this] { return Status(Get("/state")) == 200; }));

    const auto begin = Clock::now();
    End();
    EXPECT_LT(Clock::now() - begin, std::chrono::seconds(5)) << "nobody has to read to the end";
    EXPECT_TRUE(hasEndedWell);
}

TEST_F(LiveSourceTest, TheCommandServesUntilItIsInterrupted) {
    const std::string server = "127.0.0.1:" + std::to_string(daemon.Port());
    Program program({GLASSPANE_CLIENT, "serve", server, "--listen", "127.0.0.1:0", "--allow-host", "studio",
                     "--no-sound"});
    const std::string line = program.ReadLine(),
                      start = "glasspane-client: serving " + server + " on http://127.0.0.1:";
    ASSERT_THAT(line, StartsWith(start));
    const auto port = static_cast<uint16_t>(std::stoi(line.substr(start.size())));
    TestClient client(port);
    client.Send("GET /audio.wav HTTP/1.1\r\nHost: studio\r\n\r\n");
    EXPECT_EQ(Status(client.ReadReply().value_or(TestClient::Reply())), 404);

    Program second({GLASSPANE_CLIENT, "serve", server, "--listen", "127.0.0.1:" + std::to_string(port)});
    EXPECT_THAT(second.ReadLine(), HasSubstr("port " + std::to_string(port) + " is taken"));
    EXPECT_EQ(second.WaitForExit(), 1);
    for (const char* nonsense : {"--listen=:::", "--listen=8141", "--rate=0", "--quality=best"})
        EXPECT_EQ(Program({GLASSPANE_CLIENT, "serve", server, nonsense}).WaitForExit(), 2) << nonsense;

    Ask(client, "/stream"); // An open connection doesn't hold it.
    program.Signal(SIGINT);
    EXPECT_EQ(program.WaitForExit(), 0);
}

} // namespace
