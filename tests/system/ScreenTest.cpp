// A screen that the test has painted, seen through glasspaned and a socket.

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <memory>

#include <gtest/gtest.h>

#include "Daemon.h"
#include "Picture.h"
#include "StreamClient.h"
#include "TestClient.h"
#include "XPainter.h"
#include "XServer.h"

namespace {

constexpr int kWidth = 640;
constexpr int kHeight = 400;
constexpr int kCell = 40;

uint32_t colour_of_cell(int column, int row) {
    const int number = row * (kWidth / kCell) + column;
    return static_cast<uint32_t>(number * 37 % 256 << 16 | number * 91 % 256 << 8 | number * 151 % 256);
}

/// Both parts of a picture reply, and what its element says.
struct Reply {
    std::string xml;
    std::string sectionHead;
    std::string data;

    std::string Attribute(const std::string& name) const {
        const size_t start = xml.find(" " + name + "=\"");
        if (start == std::string::npos)
            return "none";
        const size_t value = start + name.size() + 3;
        return xml.substr(value, xml.find('"', value) - value);
    }
};

class ScreenTest : public testing::Test {
  protected:
    void Start(int width, int height, const std::vector<std::string>& arguments = {}) {
        server = std::make_unique<XServer>(std::to_string(width) + "x" + std::to_string(height) + "x24",
                                           arguments);
        if (!server->Running())
            SKIP_OR_FAIL(server->WhyNot());
        painter = std::make_unique<XPainter>(server->Display());
        painter->MovePointer(300, 200);
    }
    void PaintCells(int left) {
        for (int y = 0; y < kHeight; y += kCell) {
            for (int x = 0; x < kWidth; x += kCell)
                painter->Fill(left + x, y, kCell, kCell, colour_of_cell(x / kCell, y / kCell));
        }
    }
    void Serve() {
        daemon = std::make_unique<Daemon>(
            std::vector<std::string>{"--host", "x11", "--display", server->Display()});
        ASSERT_NE(daemon->Port(), 0) << daemon->ReadyLine();
        client = std::make_unique<TestClient>(daemon->Port());
    }

    /// Calls a method and takes its reply apart, byte for byte as clients expect it.
    void Call(const std::string& method, const std::string& members) {
        const auto answer = client->Call(method, "<params><param><value><struct>" + members +
                                                     "</struct></value></param></params>");
        ASSERT_TRUE(answer);
        EXPECT_EQ(answer->head, "HTTP/1.1 200 OK\r\nConnection: Keep-Alive\r\nServer: quillon_httpd/0.1.0\r\n"
                                "MIME-Version: 1.0\r\n"
                                "Content-Type: multipart/related;boundary=MimeBoundary_8923gr836bidfb3i\r\n"
                                "Content-Length: " +
                                    std::to_string(answer->body.size()) + "\r\n\r\n");
        const std::string first =
            "--MimeBoundary_8923gr836bidfb3i\r\nContent-Type: text/xml; charset=UTF-8\r\n\r\n";
        const std::string between = "\r\n--MimeBoundary_8923gr836bidfb3i\r\n";
        const std::string last = "\r\n--MimeBoundary_8923gr836bidfb3i--";
        const std::string& body = answer->body;
        ASSERT_EQ(body.substr(0, first.size()), first);
        const size_t second = body.find(between, first.size());
        ASSERT_NE(second, std::string::npos);
        const size_t data = body.find("\r\n\r\n", second) + 4;
        ASSERT_GT(body.size(), data + last.size());
        ASSERT_EQ(body.substr(body.size() - last.size()), last);
        reply.xml = body.substr(first.size(), second - first.size());
        reply.sectionHead = body.substr(second + between.size(), data - second - between.size());
        reply.data = body.substr(data, body.size() - last.size() - data);
    }

    /// A Snapshot of the present: the first one may still hold an older frame.
    void Snapshot(const std::string& crops) {
        const std::string members =
            "<member><name>quality</name><value><string>high</string></value></member>" + crops;
        for (int i = 0; i < 3; ++i)
            ASSERT_NO_FATAL_FAILURE(Call("Snapshot", members));
        EXPECT_EQ(reply.sectionHead, "Content-Type: image/jpg\r\nContent-ID: <id_snapshot_image>\r\n\r\n");
        ASSERT_TRUE(picture.Decode(reply.data));
    }

    static std::string Crop(const char* edge, int pixels) {
        return std::string("<member><name>crop_") + edge + "</name><value><int>" + std::to_string(pixels) +
               "</int></value></member>";
    }

    /// The middle of every cell that the picture shows; it begins at a place of the cells' grid.
    void ExpectCells(int left, int top) const {
        for (int y = kCell / 2; y < kHeight; y += kCell) {
            for (int x = kCell / 2; x < kWidth; x += kCell) {
                if (x < left || y < top || x - left >= picture.width || y - top >= picture.height)
                    continue;
                EXPECT_LE(picture.Difference(x - left, y - top, colour_of_cell(x / kCell, y / kCell)), 6)
                    << x << "," << y;
            }
        }
    }

    std::unique_ptr<XServer> server;
    std::unique_ptr<XPainter> painter;
    std::unique_ptr<Daemon> daemon;
    std::unique_ptr<TestClient> client;
    Reply reply;
    Picture picture;
};

#define NEED_SCREEN(...)                                                                                     \
    do {                                                                                                     \
        Start(__VA_ARGS__);                                                                                  \
        if (HasFatalFailure() || IsSkipped())                                                                \
            return;                                                                                          \
    } while (false)

TEST_F(ScreenTest, ShowsTheFirstMonitorAndWhateverACropReaches) {
    NEED_SCREEN(2 * kWidth, kHeight);
    ASSERT_EQ(painter->Xrandr("--setmonitor LEFT 640/169x400/106+0+0 screen"), 0);
    ASSERT_EQ(painter->Xrandr("--setmonitor RIGHT 640/169x400/106+640+0 none"), 0);
    PaintCells(0);
    ASSERT_NO_FATAL_FAILURE(Serve());
    const std::string& line = daemon->ReadyLine();
    EXPECT_NE(line.find("host x11, 2 displays: LEFT (640 x 400), RIGHT (640 x 400)"), std::string::npos)
        << line;

    ASSERT_NO_FATAL_FAILURE(Snapshot(""));
    EXPECT_EQ(reply.xml.substr(0, 10), "<response ");
    EXPECT_EQ(reply.xml.substr(reply.xml.size() - 4), " />\n");
    EXPECT_EQ(reply.Attribute("rect"), "0,0,639,399");
    EXPECT_EQ(picture.width, kWidth);
    EXPECT_EQ(picture.height, kHeight);
    ExpectCells(0, 0);

    ASSERT_NO_FATAL_FAILURE(
        Snapshot(Crop("left", 90) + Crop("top", 130) + Crop("right", 101) + Crop("bottom", 77)));
    EXPECT_EQ(reply.Attribute("rect"), "90,130,538,322");
    EXPECT_EQ(picture.width, kWidth - 90 - 101);
    EXPECT_EQ(picture.height, kHeight - 130 - 77);
    ExpectCells(90, 130);

    painter->Fill(0, 0, kWidth, kHeight, 0x2080C0);
    PaintCells(kWidth);
    ASSERT_NO_FATAL_FAILURE(Snapshot(""));
    EXPECT_LE(picture.Difference(kWidth / 2, kHeight / 2, 0x2080C0), 6) << "the picture follows the screen";
    ASSERT_NO_FATAL_FAILURE(Snapshot(Crop("left", kWidth) + Crop("right", -kWidth)));
    EXPECT_EQ(reply.Attribute("rect"), "640,0,1279,399");
    ExpectCells(0, 0);
}

TEST_F(ScreenTest, HandsOutThePointerThatTheServerHas) {
    NEED_SCREEN(kWidth, kHeight);
    painter->SetPointer(9, 3, 4, 0xFF8000);
    painter->MovePointer(100, 50);
    ASSERT_NO_FATAL_FAILURE(Serve());
    ASSERT_NO_FATAL_FAILURE(Snapshot(""));
    EXPECT_EQ(reply.Attribute("mouse_location"), "97,46") << "position less hot spot";
    const std::string instance = reply.Attribute("instance");
    const std::string id = reply.Attribute("mouse_id");
    ASSERT_NO_FATAL_FAILURE(
        Call("SnapshotMouse", "<member><name>mouse_id</name><value><int>" + id + "</int></value></member>"));
    EXPECT_EQ(reply.sectionHead,
              "Content-Type: application/cursor-binary\r\nContent-ID: <id_mouse_shape>\r\n\r\n");
    const int width = std::atoi(reply.Attribute("width").c_str());
    const int height = std::atoi(reply.Attribute("height").c_str());
    EXPECT_EQ(reply.xml,
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
    EXPECT_TRUE(reply.data == shape);

    client->SetReceiveTimeout(300);
    EXPECT_FALSE(client->Call("SnapshotMouse")) << "no shape has the number 0";
}

TEST_F(ScreenTest, OutlivesItsXServerAndFollowsTheNextOne) {
    NEED_SCREEN(kWidth, kHeight, {XServer::PrivateDisplay()});
    ASSERT_NO_FATAL_FAILURE(Serve());
    StreamClient stream(daemon->Port(), "", "SnapshotByDiffs", 300);
    const auto await = [&](const std::function<bool()>& condition) {
        const auto bound = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (!condition()) {
            if (std::chrono::steady_clock::now() > bound)
                return false;
        }
        return true;
    };
    const auto awaitColour = [&](int x, int y, uint32_t colour) {
        return await([&] { return stream.Poll() && stream.Difference(x, y, colour) <= 8; });
    };
    painter->Fill(0, 0, kWidth, kHeight, 0x305070);
    ASSERT_TRUE(awaitColour(kWidth - 9, kHeight - 9, 0x305070));
    server->Kill();
    EXPECT_TRUE(await([&] { return !stream.Poll(); })) << "there is nothing to see";
    EXPECT_TRUE(client->Call("CheckConnection"));

    server->Restart("800x600x24");
    ASSERT_TRUE(server->Running()) << server->WhyNot();
    painter = std::make_unique<XPainter>(server->Display());
    painter->Fill(0, 0, 800, 600, 0x708090);
    EXPECT_TRUE(awaitColour(790, 590, 0x708090));
    painter->Fill(100, 100, 50, 50, 0x20C040);
    EXPECT_TRUE(awaitColour(125, 125, 0x20C040));

    ASSERT_EQ(painter->Xrandr("--newmode small 0 400 0 0 400 300 0 0 300"), 0) << "is xrandr installed?";
    ASSERT_EQ(painter->Xrandr("--addmode screen small"), 0);
    ASSERT_EQ(painter->Xrandr("--output screen --mode small"), 0);
    painter->Fill(0, 0, 400, 300, 0xA03020);
    EXPECT_TRUE(awaitColour(390, 290, 0xA03020));
    EXPECT_EQ(stream.Difference(400, 290, 0), 255) << "that is all of it";
    ASSERT_NO_FATAL_FAILURE(Snapshot(""));
    EXPECT_EQ(reply.Attribute("rect"), "0,0,399,299");
    daemon->Process().Signal(SIGTERM);
    EXPECT_EQ(daemon->Process().WaitForExit(), 0);
}

TEST_F(ScreenTest, EndsThoughItsXServerHangs) {
    NEED_SCREEN(kWidth, kHeight);
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
