// A screen that the test has painted, seen through glasspaned and a socket.

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <memory>

#include <gtest/gtest.h>
#include <turbojpeg.h>
#include <xcb/xfixes.h>

#include "Daemon.h"
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

/// Rows top first, three bytes r, g, b.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<uint8_t> pixels;

    int Difference(int x, int y, uint32_t colour) const {
        const uint8_t* rgb = &pixels[static_cast<size_t>(y * width + x) * 3];
        int largest = 0;
        for (int i = 0; i < 3; ++i)
            largest = std::max(largest, std::abs(rgb[i] - static_cast<int>(colour >> (16 - 8 * i) & 0xFF)));
        return largest;
    }
};

class ScreenTest : public testing::Test {
  protected:
    void Start(int width, int height) {
        server = std::make_unique<XServer>(std::to_string(width) + "x" + std::to_string(height) + "x24");
        if (!server->Running())
            SKIP_OR_FAIL(server->WhyNot());
        painter = std::make_unique<XPainter>(server->Display());
        painter->MovePointer(300, 200);
    }
    void PaintCells(int left, int top) {
        for (int row = 0; row < kHeight / kCell; ++row) {
            for (int column = 0; column < kWidth / kCell; ++column)
                painter->Fill(left + column * kCell, top + row * kCell, kCell, kCell,
                              colour_of_cell(column, row));
        }
    }
    void Serve() {
        daemon = std::make_unique<Daemon>(
            std::vector<std::string>{"--host", "x11", "--display", server->Display()});
        ASSERT_NE(daemon->Port(), 0) << daemon->ReadyLine();
        client = std::make_unique<TestClient>(daemon->Port());
    }

    /// Calls a method and takes its reply apart, byte for byte as clients expect it.
    void Call(const std::string& method, const std::string& members, Reply& reply) {
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
    void Snapshot(const std::string& crops, Reply& reply, Picture& picture) {
        const std::string members =
            "<member><name>quality</name><value><string>high</string></value></member>" + crops;
        for (int i = 0; i < 3; ++i)
            ASSERT_NO_FATAL_FAILURE(Call("Snapshot", members, reply));
        EXPECT_EQ(reply.sectionHead, "Content-Type: image/jpg\r\nContent-ID: <id_snapshot_image>\r\n\r\n");
        const auto* jpeg = reinterpret_cast<const unsigned char*>(reply.data.data());
        tjhandle decoder = tjInitDecompress();
        int subsampling = 0;
        int space = 0;
        ASSERT_EQ(tjDecompressHeader3(decoder, jpeg, reply.data.size(), &picture.width, &picture.height,
                                      &subsampling, &space),
                  0);
        picture.pixels.resize(static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height) * 3);
        // Pictures travel upside down.
        ASSERT_EQ(tjDecompress2(decoder, jpeg, reply.data.size(), picture.pixels.data(), 0, 0, 0, TJPF_RGB,
                                TJFLAG_BOTTOMUP),
                  0);
        tjDestroy(decoder);
    }

    static std::string Crop(const char* edge, int pixels) {
        return std::string("<member><name>crop_") + edge + "</name><value><int>" + std::to_string(pixels) +
               "</int></value></member>";
    }

    /// The middle of every cell that the picture shows whole; the picture begins at a place of the cells'
    /// grid.
    static void ExpectCells(const Picture& picture, int left, int top) {
        int seen = 0;
        for (int y = kCell / 2; y < kHeight; y += kCell) {
            for (int x = kCell / 2; x < kWidth; x += kCell) {
                const int px = x - left;
                const int py = y - top;
                if (px < 0 || py < 0 || px >= picture.width || py >= picture.height)
                    continue;
                ++seen;
                EXPECT_LE(picture.Difference(px, py, colour_of_cell(x / kCell, y / kCell)), 6)
                    << x << "," << y;
            }
        }
        EXPECT_GT(seen, 0);
    }

    std::unique_ptr<XServer> server;
    std::unique_ptr<XPainter> painter;
    std::unique_ptr<Daemon> daemon;
    std::unique_ptr<TestClient> client;
};

#define NEED_SCREEN(...)                                                                                     \
    do {                                                                                                     \
        Start(__VA_ARGS__);                                                                                  \
        if (HasFatalFailure() || IsSkipped())                                                                \
            return;                                                                                          \
    } while (false)

TEST_F(ScreenTest, ShowsTheWholeScreenAndCrops) {
    NEED_SCREEN(kWidth, kHeight);
    PaintCells(0, 0);
    ASSERT_NO_FATAL_FAILURE(Serve());
    EXPECT_NE(daemon->ReadyLine().find("host x11, 1 display: "), std::string::npos) << daemon->ReadyLine();
    EXPECT_NE(daemon->ReadyLine().find("(640 x 400)"), std::string::npos) << daemon->ReadyLine();

    Reply reply;
    Picture picture;
    ASSERT_NO_FATAL_FAILURE(Snapshot("", reply, picture));
    EXPECT_EQ(reply.xml.substr(0, 10), "<response ");
    EXPECT_EQ(reply.xml.substr(reply.xml.size() - 4), " />\n");
    EXPECT_EQ(reply.Attribute("rect"), "0,0,639,399");
    EXPECT_EQ(picture.width, kWidth);
    EXPECT_EQ(picture.height, kHeight);
    ExpectCells(picture, 0, 0);

    ASSERT_NO_FATAL_FAILURE(Snapshot(
        Crop("left", 90) + Crop("top", 130) + Crop("right", 101) + Crop("bottom", 77), reply, picture));
    EXPECT_EQ(reply.Attribute("rect"), "90,130,538,322");
    EXPECT_EQ(picture.width, kWidth - 90 - 101);
    EXPECT_EQ(picture.height, kHeight - 130 - 77);
    ExpectCells(picture, 90, 130);

    painter->Fill(0, 0, kWidth, kHeight, 0x2080C0);
    ASSERT_NO_FATAL_FAILURE(Snapshot("", reply, picture));
    EXPECT_LE(picture.Difference(kWidth / 2, kHeight / 2, 0x2080C0), 6) << "the picture follows the screen";
}

TEST_F(ScreenTest, ServesTheFirstOfTwoMonitorsAndReachesTheOtherThroughTheCrop) {
    NEED_SCREEN(2 * kWidth, kHeight);
    ASSERT_EQ(painter->Xrandr("--setmonitor LEFT 640/169x400/106+0+0 screen"), 0);
    ASSERT_EQ(painter->Xrandr("--setmonitor RIGHT 640/169x400/106+640+0 none"), 0);
    painter->Fill(0, 0, kWidth, kHeight, 0xC04020);
    PaintCells(kWidth, 0);
    ASSERT_NO_FATAL_FAILURE(Serve());
    EXPECT_NE(daemon->ReadyLine().find("2 displays: LEFT (640 x 400), RIGHT (640 x 400)"), std::string::npos)
        << daemon->ReadyLine();

    Reply reply;
    Picture picture;
    ASSERT_NO_FATAL_FAILURE(Snapshot("", reply, picture));
    EXPECT_EQ(reply.Attribute("rect"), "0,0,639,399");
    EXPECT_LE(picture.Difference(10, 10, 0xC04020), 6);
    ASSERT_NO_FATAL_FAILURE(Snapshot(Crop("left", kWidth) + Crop("right", -kWidth), reply, picture));
    EXPECT_EQ(reply.Attribute("rect"), "640,0,1279,399");
    ExpectCells(picture, 0, 0);
}

TEST_F(ScreenTest, HandsOutThePointerThatTheServerHas) {
    NEED_SCREEN(kWidth, kHeight);
    painter->SetPointer(9, 3, 4, 0xFF8000);
    painter->MovePointer(100, 50);
    ASSERT_NO_FATAL_FAILURE(Serve());
    Reply reply;
    Picture picture;
    ASSERT_NO_FATAL_FAILURE(Snapshot("", reply, picture));
    EXPECT_EQ(reply.Attribute("mouse_location"), "97,46") << "position less hot spot";
    const std::string instance = reply.Attribute("instance");

    xcb_connection_t* xcb = xcb_connect(server->Display().c_str(), nullptr);
    free(xcb_xfixes_query_version_reply(xcb, xcb_xfixes_query_version(xcb, 4, 0), nullptr));
    xcb_xfixes_get_cursor_image_reply_t* shape =
        xcb_xfixes_get_cursor_image_reply(xcb, xcb_xfixes_get_cursor_image(xcb), nullptr);
    ASSERT_NE(shape, nullptr);

    const std::string id = reply.Attribute("mouse_id");
    ASSERT_NO_FATAL_FAILURE(Call("SnapshotMouse",
                                 "<member><name>mouse_id</name><value><int>" + id + "</int></value></member>",
                                 reply));
    EXPECT_EQ(reply.sectionHead,
              "Content-Type: application/cursor-binary\r\nContent-ID: <id_mouse_shape>\r\n\r\n");
    const std::string width = std::to_string(shape->width);
    const std::string height = std::to_string(shape->height);
    EXPECT_EQ(reply.xml, "<response instance=\"" + instance + "\" width=\"" + width + "\" height=\"" +
                             height + "\" rowbytes=\"" + std::to_string(shape->width * 4) +
                             "\" colorspace=\"1650946657\" section_rect_1=\"0,0," +
                             std::to_string(shape->width - 1) + "," + std::to_string(shape->height - 1) +
                             "\" mouse_shape=\"cid:id_mouse_shape\" error=\"0\" />\n");
    ASSERT_EQ(reply.data.size(), static_cast<size_t>(shape->width) * shape->height * 4);

    const uint32_t* argb = xcb_xfixes_get_cursor_image_cursor_image(shape);
    for (int y = 0; y < shape->height; ++y) {
        for (int x = 0; x < shape->width; ++x) {
            const uint32_t pixel = argb[y * shape->width + x];
            const size_t place = static_cast<size_t>((shape->height - 1 - y) * shape->width + x) * 4;
            for (int byte = 0; byte < 4; ++byte)
                ASSERT_EQ(static_cast<uint8_t>(reply.data[place + static_cast<size_t>(byte)]),
                          static_cast<uint8_t>(pixel >> (24 - 8 * byte)))
                    << x << "," << y;
        }
    }
    free(shape);
    xcb_disconnect(xcb);

    client->SetReceiveTimeout(300);
    EXPECT_FALSE(client->Call("SnapshotMouse")) << "no shape has the number 0";
}

TEST_F(ScreenTest, OutlivesItsXServer) {
    NEED_SCREEN(kWidth, kHeight);
    ASSERT_NO_FATAL_FAILURE(Serve());
    ASSERT_TRUE(client->Call("Snapshot"));
    server->Kill();
    client->SetReceiveTimeout(300);
    client->Call("Snapshot"); // May still hold the last frame.
    EXPECT_FALSE(client->Call("Snapshot"));
    client->SetReceiveTimeout(5000);
    EXPECT_TRUE(client->Call("CheckConnection"));
    daemon->Process().Signal(SIGTERM);
    EXPECT_EQ(daemon->Process().WaitForExit(), 0);
}

TEST_F(ScreenTest, EndsWithinTwoSecondsThoughItsXServerHangs) {
    NEED_SCREEN(kWidth, kHeight);
    ASSERT_NO_FATAL_FAILURE(Serve());
    ASSERT_TRUE(client->Call("Snapshot"));
    server->Freeze();
    client->SetReceiveTimeout(300);
    client->Call("Snapshot");
    client->Call("Snapshot");
    daemon->Process().Signal(SIGTERM);
    EXPECT_EQ(daemon->Process().WaitForExit(std::chrono::seconds(2)), 0);
}

} // namespace
