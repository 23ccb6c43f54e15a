// A screen that the test has painted, seen through glasspaned and a socket.

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <functional>

#include "Picture.h"
#include "Response.h"
#include "ScreenFixture.h"
#include "StreamClient.h"

namespace {

constexpr int kWidth = 640;
constexpr int kHeight = 400;
constexpr int kCell = 40;

uint32_t colour_of_cell(int column, int row) {
    const int number = row * (kWidth / kCell) + column;
    return static_cast<uint32_t>(number * 37 % 256 << 16 | number * 91 % 256 << 8 | number * 151 % 256);
}

class ScreenTest : public ScreenFixture {
  protected:
    void Start(int width, int height, const std::vector<std::string>& arguments = {}) {
        StartScreen(std::to_string(width) + "x" + std::to_string(height) + "x24", arguments);
        if (painter)
            painter->MovePointer(300, 200);
    }
    void PaintCells(int left) {
        for (int y = 0; y < kHeight; y += kCell) {
            for (int x = 0; x < kWidth; x += kCell)
                painter->Fill(left + x, y, kCell, kCell, colour_of_cell(x / kCell, y / kCell));
        }
    }
    void Serve() {
        ASSERT_NO_FATAL_FAILURE(StartDaemon());
        client = std::make_unique<TestClient>(daemon->Port());
    }

    /// Calls a method whose reply has one section.
    void Call(const std::string& method, const std::string& members) {
        const auto answer = client->Call(method, "<params><param><value><struct>" + members +
                                                     "</struct></value></param></params>");
        ASSERT_TRUE(answer);
        response = Response(*answer);
        ASSERT_EQ(response.sections.size(), 1U);
    }

    /// Takes pictures until one is as expected: one of the same size may still be an older frame.
    void Snapshot(const std::string& crops, const std::function<bool()>& isExpected) {
        const std::string members =
            "<member><name>quality</name><value><string>high</string></value></member>" + crops;
        EXPECT_TRUE(Await([&] {
            Call("Snapshot", members);
            return HasFatalFailure() || !picture.Decode(response.sections[0].data) || isExpected();
        }));
        ASSERT_FALSE(HasFatalFailure());
        EXPECT_EQ(response.sections[0].head,
                  "Content-Type: image/jpg\r\nContent-ID: <id_snapshot_image>\r\n\r\n");
    }

    static std::string Crop(const char* edge, int pixels) {
        return std::string("<member><name>crop_") + edge + "</name><value><int>" + std::to_string(pixels) +
               "</int></value></member>";
    }

    /// Whether the middle of every cell that the picture shows has its colour, where the picture begins at a
    /// place of the cells' grid.
    bool HasCells(int left, int top) const {
        int wrong = 0;
        for (int y = kCell / 2; y < kHeight; y += kCell) {
            for (int x = kCell / 2; x < kWidth; x += kCell) {
                if (x < left || y < top || x - left >= picture.width || y - top >= picture.height)
                    continue;
                wrong += !Has(x - left, y - top, colour_of_cell(x / kCell, y / kCell));
            }
        }
        return wrong == 0;
    }
    bool Has(int x, int y, uint32_t colour) const { return picture.Difference(x, y, colour) <= 6; }

    std::unique_ptr<TestClient> client;
    Response response;
    Picture picture;
};

TEST_F(ScreenTest, ShowsTheFirstMonitorAndWhateverACropReaches) {
    START(Start(2 * kWidth, kHeight));
    ASSERT_EQ(painter->Xrandr("--setmonitor LEFT 640/169x400/106+0+0 screen"), 0);
    ASSERT_TRUE(painter->SetMonitor("RIGHT", "640/169x400/106+640+0"));
    PaintCells(0);
    ASSERT_NO_FATAL_FAILURE(Serve());
    const std::string& line = daemon->ReadyLine();
    EXPECT_NE(line.find("host x11, 2 displays: LEFT (640 x 400), RIGHT (640 x 400)"), std::string::npos)
        << line;

    ASSERT_NO_FATAL_FAILURE(Snapshot("", [this] { return HasCells(0, 0); }));
    EXPECT_EQ(response.Attribute("rect"), "0,0,639,399");
    EXPECT_EQ(picture.width, kWidth);
    EXPECT_EQ(picture.height, kHeight);

    ASSERT_NO_FATAL_FAILURE(
        Snapshot(Crop("left", 90) + Crop("top", 130) + Crop("right", 101) + Crop("bottom", 77),
                 [this] { return HasCells(90, 130); }));
    EXPECT_EQ(response.Attribute("rect"), "90,130,538,322");
    EXPECT_EQ(picture.width, kWidth - 90 - 101);
    EXPECT_EQ(picture.height, kHeight - 130 - 77);

    painter->Fill(0, 0, kWidth, kHeight, 0x2080C0);
    PaintCells(kWidth);
    ASSERT_NO_FATAL_FAILURE(Snapshot("", [this] { return Has(kWidth / 2, kHeight / 2, 0x2080C0); }));
    ASSERT_NO_FATAL_FAILURE(
        Snapshot(Crop("left", kWidth) + Crop("right", -kWidth), [this] { return HasCells(0, 0); }));
    EXPECT_EQ(response.Attribute("rect"), "640,0,1279,399");
}

TEST_F(ScreenTest, HandsOutThePointerThatTheServerHas) {
    START(Start(kWidth, kHeight));
    painter->SetPointer(9, 3, 4, 0xFF8000);
    painter->MovePointer(100, 50);
    ASSERT_NO_FATAL_FAILURE(Serve());
    ASSERT_NO_FATAL_FAILURE(Call("Snapshot", ""));
    EXPECT_EQ(response.Attribute("mouse_location"), "97,46") << "position less hot spot";
    const std::string instance = response.Attribute("instance");
    const std::string id = response.Attribute("mouse_id");
    ASSERT_NO_FATAL_FAILURE(
        Call("SnapshotMouse", "<member><name>mouse_id</name><value><int>" + id + "</int></value></member>"));
    EXPECT_EQ(response.sections[0].head,
              "Content-Type: application/cursor-binary\r\nContent-ID: <id_mouse_shape>\r\n\r\n");
    const int width = std::atoi(response.Attribute("width").c_str());
    const int height = std::atoi(response.Attribute("height").c_str());
    EXPECT_EQ(response.xml,
              "<response instance=\"" + instance + "\" width=\"" + std::to_string(width) + "\" height=\"" +
                  std::to_string(height) + "\" rowbytes=\"" + std::to_string(width * 4) +
                  "\" colorspace=\"1650946657\" section_rect_1=\"0,0," + std::to_string(width - 1) + "," +
                  std::to_string(height - 1) + "\" mouse_shape=\"cid:id_mouse_shape\" error=\"0\" />\n");
    ASSERT_GE(std::min(width, height), 9);
    std::string shape; // Bytes a, r, g, b; the bottom row first.
    for (int y = height - 1; y >= 0; --y) {
        for (int x = 0; x < width; ++x)
            shape += std::string(x < 9 && y < 9 ? "\xFF\xFF\x80\x00" : "\0\0\0\0", 4);
    }
    EXPECT_TRUE(response.sections[0].data == shape);

    painter->SetPointer(0, 0, 0, 0xFFFFFF);
    EXPECT_TRUE(Await([this] {
        Call("Snapshot", "");
        return response.Attribute("mouse_location").empty();
    })) << "no pixel of it can be seen";
    client->SetReceiveTimeout(300);
    EXPECT_FALSE(client->Call("SnapshotMouse")) << "no shape has the number 0";
}

TEST_F(ScreenTest, OutlivesItsXServerAndFollowsTheNextOne) {
    START(Start(kWidth, kHeight, {XServer::PrivateDisplay()}));
    ASSERT_NO_FATAL_FAILURE(Serve());
    StreamClient stream(daemon->Port(), false, 0.3);
    const auto awaitColour = [&](int x, int y, uint32_t colour) {
        return Await([&] { return stream.Poll() && stream.Difference(x, y, colour) <= 8; });
    };
    painter->Fill(0, 0, kWidth, kHeight, 0x305070);
    ASSERT_TRUE(awaitColour(kWidth - 9, kHeight - 9, 0x305070));
    server->Kill();
    EXPECT_TRUE(Await([&] { return !stream.Poll(); })) << "there is nothing to see";
    EXPECT_TRUE(client->Call("CheckConnection"));

    server->Restart("800x600x24");
    ASSERT_TRUE(server->Running()) << server->WhyNot();
    painter = std::make_unique<XPainter>(server->Display());
    painter->Fill(0, 0, 800, 600, 0x708090);
    EXPECT_TRUE(awaitColour(790, 590, 0x708090));
    painter->Fill(100, 100, 50, 50, 0x20C040);
    EXPECT_TRUE(awaitColour(125, 125, 0x20C040));

    ASSERT_NO_FATAL_FAILURE(Call("Snapshot", ""));
    EXPECT_EQ(response.Attribute("rect"), "0,0,799,599");
    daemon->Process().Signal(SIGTERM);
    EXPECT_EQ(daemon->Process().WaitForExit(), 0);
}

TEST_F(ScreenTest, EndsThoughItsXServerHangs) {
    START(Start(kWidth, kHeight));
    ASSERT_NO_FATAL_FAILURE(Serve());
    ASSERT_TRUE(client->Call("Snapshot"));
    server->Freeze();
    client->SetReceiveTimeout(300);
    client->Call("Snapshot");
    client->Call("Snapshot");
    daemon->Process().Signal(SIGTERM);
    EXPECT_EQ(daemon->Process().WaitForExit(), 0);
}

} // namespace
