// What the gateway makes of a server whose every answer the test knows.

#include <mutex>

#include <nlohmann/json.hpp>

#include "AllowedHosts.h"
#include "GatewayFixture.h"
#include "Jpeg.h"
#include "Picture.h"
#include "RealReply.h"
#include "ScriptedServer.h"

namespace {

using namespace receiver;
using testing::HasSubstr;

constexpr int kWidth = 64;

/// A whole frame, white in its lower half, which is upside down on its way.
std::string upside_down(int height) {
    std::vector<uint8_t> jpeg, pixels(static_cast<size_t>(kWidth * height * 4), 0);
    std::fill_n(pixels.begin(), pixels.size() / 2, uint8_t{255});
    JpegEncoder().Encode(pixels.data(), kWidth, height, kWidth * 4, 80, jpeg);
    return {jpeg.begin(), jpeg.end()};
}

/// Of a picture that stands upright, which Picture takes for upside down.
bool is_upright(const std::string& jpeg) {
    Picture picture;
    return picture.Decode(jpeg) && picture.Difference(2, 2, 0xFFFFFF) < 40 &&
           picture.Difference(2, picture.height - 3, 0x000000) < 40;
}

class StillPictureTest : public GatewayTest {
  protected:
    /// A server that shows that, again and again.
    void Serve(int height, bool hasPointer) {
        jpeg = upside_down(height);
        const std::string rect = "0,0,63," + std::to_string(height - 1),
                          mark = "--MimeBoundary_8923gr836bidfb3i";
        RealReply whole("whole");
        whole.body =
            mark + "\r\nContent-Type: text/xml\r\n\r\n<response timestamp=\"1000\" section_rect_1=\"" + rect +
            "\" error=\"0\" instance=\"7\" picture=\"cid:x\" rect=\"" + rect + "\" next_sequence_id=\"3\"" +
            (hasPointer ? " mouse_location=\"20,8\" mouse_id=\"1\"" : "") + "/>\r\n" + mark +
            "\r\nContent-Type: image/jpg\r\n\r\n" + jpeg + "\r\n" + mark + "--";
        server = std::make_unique<ScriptedServer>([this, whole](const std::string& request) {
            const std::lock_guard lock(mutex);
            if (request.find("SnapshotMouse") != request.npos)
                return ScriptedServer::Answer{RealReply("pointer").Bytes()};
            if (request.find("GetMenus") != request.npos)
                return ScriptedServer::Answer{menus.Bytes()};
            if (request.find("SetSourceFromMenuItem") != request.npos)
                chosen = request;
            return ScriptedServer::Answer{isSilent ? "" : whole.Bytes(), ScriptedServer::kKeepOpen, pieces};
        });
        Start(server->Port());
        ASSERT_TRUE(
            Eventually([this] { return Get("/state").body.find("\"picture\":0") == std::string::npos; }));
    }

    std::mutex mutex;
    RealReply menus{"menus"};
    std::string chosen;
    bool isSilent = false;
    int pieces = 1; ///< Of each reply, slowly sent.
    std::string jpeg;
    std::unique_ptr<ScriptedServer> server;
};

TEST_F(StillPictureTest, WholeFramesGoOnWithoutAnEncoding) {
    Serve(32, false);
    const auto reply = Get("/picture.jpg");
    EXPECT_EQ(reply.body, jpeg) << "as the server sent it";
    EXPECT_THAT(reply.head, HasSubstr("Picture-Upside-Down: 1"));
    EXPECT_TRUE(is_upright(Get("/snapshot.jpg").body));
    TestClient client(Port());
    Ask(client, "/stream");
    LiveReader stream(client);
    EXPECT_THAT(stream.TakeUntil("\r\n\r\n"), HasSubstr("multipart/x-mixed-replace"));
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(is_upright(stream.TakePart()));
    EXPECT_EQ(gateway->EncodedPictures(), 0U);
}

TEST_F(StillPictureTest, PicturesThatCannotBeTurnedAreEncodedUpright) {
    Serve(40, false); // Two and a half rows of blocks.
    TestClient client(Port());
    Ask(client, "/stream?pointer=0");
    LiveReader stream(client);
    stream.TakeUntil("\r\n\r\n");
    EXPECT_TRUE(is_upright(stream.TakePart()));
    EXPECT_TRUE(is_upright(Get("/snapshot.jpg").body));
    EXPECT_GT(gateway->EncodedPictures(), 0U);
}

TEST_F(StillPictureTest, ThePointerIsDrawnUnlessItIsLeftOut) {
    Serve(64, true);
    const nlohmann::json state = nlohmann::json::parse(Get("/state").body);
    EXPECT_EQ(state["pointer"]["x"], 20);
    EXPECT_EQ(state["pointer"]["y"], 8);
    Picture with, without;
    ASSERT_TRUE(with.Decode(Get("/snapshot.jpg").body));
    ASSERT_TRUE(without.Decode(Get("/snapshot.jpg?pointer=0").body));
    int lit = 0;
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x)
            if (with.At(x, 63 - y)[0] > without.At(x, 63 - y)[0] + 100) {
                EXPECT_TRUE(x >= 20 && x < 35 && y >= 8 && y < 27) << x << ", " << y;
                ++lit;
            }
    EXPECT_GT(lit, 20) << "the arrow is white, on black";
    const auto png = Get("/pointer.png?id=" + state["pointer"]["shape"].get<std::string>());
    EXPECT_THAT(png.body.substr(0, 24), HasSubstr(std::string("PNG")));
    EXPECT_EQ(png.body.substr(19, 5), std::string("\x0F\0\0\0\x13", 5)) << "15 wide, 19 high";
    EXPECT_EQ(Status(Get("/pointer.png?id=1")), 404);
}

TEST_F(StillPictureTest, AServerThatStallsIsToldOfInOneLineAndComesBack) {
    Serve(32, false);
    const auto set_silent = [this](bool isOn) {
        const std::lock_guard lock(mutex);
        isSilent = isOn;
    };
    const auto says = [this](const char* text) { return Get("/state").body.find(text) != std::string::npos; };
    set_silent(true);
    EXPECT_TRUE(Eventually([&] { return says("\"connected\":false,\"failure\":\"no reply"); }));
    const auto reply = Get("/snapshot.jpg");
    EXPECT_EQ(Status(reply), 503);
    EXPECT_THAT(reply.body, testing::MatchesRegex("no reply[^\n]*\n"));
    set_silent(false);
    EXPECT_TRUE(Eventually([&] { return says("\"connected\":true,\"failure\":\"\""); }));
    EXPECT_EQ(Status(Get("/snapshot.jpg")), 200);
}

TEST_F(StillPictureTest, ASlowServerIsWaitedForLongerThanAnyPictureTakes) {
    callSeconds = 30;
    pieces = 6; // Half a second for each reply.
    Serve(32, false);
    EXPECT_TRUE(is_upright(Get("/snapshot.jpg").body));
}

TEST_F(StillPictureTest, SourcesAreListedAndChosen) {
    menus.Replace("WINDOW 1", "A &quot;B&quot; \\ &lt;/script&gt;&#10;C");
    Serve(32, false);
    const nlohmann::json list = nlohmann::json::parse(Get("/sources").body)["sources"];
    ASSERT_EQ(list.size(), 6U);
    EXPECT_EQ(list[2]["screen"], 0);
    const std::string title = "A \"B\" \\ </script>\nC";
    EXPECT_EQ(list[4]["kind"], "window");
    EXPECT_EQ(list[4]["title"], title);

    const std::string json = "Content-Type: application/json\r\n";
    EXPECT_EQ(Status(Post(nlohmann::json{{"window", title}}.dump(), json)), 200);
    EXPECT_THAT(chosen, HasSubstr("SetSourceFromMenuItem"));
    chosen.clear();
    EXPECT_EQ(Status(Post(R"({"screen": 7})", json)), 404);
    for (const char* nonsense :
         {"", "[]", "{", R"({"screen": "0"})", R"({"window": 1})", "{\"window\": \"\xFF\"}"})
        EXPECT_EQ(Status(Post(nonsense, json)), 400) << nonsense;
    EXPECT_EQ(Status(Post(R"({"screen": 0})", "Content-Type: text/plain\r\n")), 415);
    EXPECT_EQ(Status(Post(R"({"screen": 0})", json + "Origin: http://elsewhere.example\r\n")), 403);
    EXPECT_EQ(Status(Post(std::string(1'000'000, ' '), json)), 413);
    EXPECT_EQ(chosen, "");
}

TEST(AllowedHostsTest, AnswersToItsOwnNamesAlone) {
    const AllowedHosts own({"127.0.0.1", 8090}, {"Studio.example", "desk:80"});
    const AllowedHosts any({"0.0.0.0", 8090}, {});
    const struct {
        const AllowedHosts& hosts;
        const char* host;
        const char* origin;
        bool isAllowed;
    } cases[] = {
        {own, "127.0.0.1:8090", "", true},
        {own, "LocalHost", "", true},
        {own, "[::1]:80", "http://[::1]:80", true},
        {own, "studio.example:1", "https://studio.EXAMPLE:1", true},
        {own, "desk:8090", "", true},
        {own, "", "", false},
        {own, "elsewhere.example", "", false},
        {own, "localhost.elsewhere.example", "", false},
        {own, "localhost:8090:8090", "", false},
        {own, "192.0.2.1", "", false},
        {own, "localhost:8090", "http://localhost:3000", false},
        {own, "localhost:8090", "http://elsewhere.example", false},
        {own, "localhost:8090", "null", false},
        {any, "192.0.2.1:8090", "", true},
        {any, "elsewhere.example", "", false},
    };
    for (const auto& one : cases)
        EXPECT_EQ(one.hosts.Refusal(one.host, one.origin).empty(), one.isAllowed) << one.host << one.origin;
    EXPECT_THAT(own.Refusal("elsewhere.example", ""), HasSubstr("--allow-host"));
}

} // namespace
