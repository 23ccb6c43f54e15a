// A client that composes whole frames and changed regions, beside a screen on which someone paints.

#include <algorithm>
#include <functional>
#include <memory>
#include <random>

#include "Response.h"
#include "ScreenFixture.h"
#include "StreamClient.h"
#include "XWindows.h"

namespace {

constexpr int kWidth = 800;
constexpr int kHeight = 600;

class StreamTest : public ScreenFixture {
  protected:
    void Start() {
        StartScreen(std::to_string(kWidth) + "x" + std::to_string(kHeight) + "x24");
        if (!painter)
            return;
        painter->Fill(0, 0, kWidth, kHeight, 0x304050);
        ASSERT_NO_FATAL_FAILURE(StartDaemon());
        client = std::make_unique<StreamClient>(daemon->Port());
    }

    /// Follows the stream until a condition holds; false when it doesn't in far more time than that takes.
    bool Follow(const std::function<bool()>& condition) {
        painter->Sync();
        bool isFine = true;
        return Await([&] { return !(isFine = client->Poll()) || condition(); }) && isFine;
    }
    /// Until the canvas shows what a screenshot shows.
    bool Settle() {
        return Follow(
            [this] { return client->Last().pictures.empty() && LargestDifference() <= kTolerance; });
    }

    /// Between the canvas and a screenshot of its place. JPEG blurs what is next to an edge: only places
    /// whose neighbours have their colour are compared.
    int LargestDifference() {
        const zRect frame = client->Frame();
        const int width = frame.Width();
        const int height = frame.Height();
        const std::vector<uint32_t> shot = painter->Screenshot(frame.left, frame.top, width, height);
        int largest = shot.empty() ? 255 : 0;
        const auto at = [&](int x, int y) { return shot[static_cast<size_t>(y * width + x)]; };
        const auto isPlain = [&](int x, int y) {
            for (int dy = -kBlur; dy <= kBlur; ++dy) {
                for (int dx = -kBlur; dx <= kBlur; ++dx) {
                    if (at(x + dx, y + dy) != at(x, y))
                        return false;
                }
            }
            return true;
        };
        for (int y = kBlur; y < height - kBlur && !shot.empty(); y += 8) {
            for (int x = kBlur; x < width - kBlur; x += 8) {
                if (isPlain(x, y))
                    largest = std::max(largest, client->Difference(x, y, at(x, y)));
            }
        }
        return largest;
    }

    int Below(int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); }
    void PaintSomething(int largestWidth, int largestHeight) {
        painter->Draw(Below(kWidth), Below(kHeight), 1 + Below(largestWidth), 1 + Below(largestHeight),
                      random() & 0xFFFFFF);
    }

    static constexpr int kTolerance = 8;
    static constexpr int kBlur = 15; // The extent of a block of halved colour.

    std::unique_ptr<StreamClient> client;
    std::mt19937 random{20240607};
};

TEST_F(StreamTest, TheCanvasFollowsTheScreen) {
    START(Start());
    ASSERT_TRUE(Settle());
    const uint64_t framesBefore = client->WholeFrames();
    XWindows windows(server->Display());
    const xcb_window_t window = windows.Open(50, 60, 200, 150, 3);
    windows.Show(window);
    const auto work = [&](int wanted) {
        for (int changes = 0; changes < wanted;) {
            for (int burst = 1 + Below(16); burst > 0; --burst, ++changes) {
                PaintSomething(burst % 3 ? 60 : 400, burst % 3 ? 60 : 300);
                if (burst % 3 == 0) {
                    ASSERT_TRUE(client->Poll());
                }
                if (burst % 8 == 0)
                    windows.Place(window, Below(kWidth), Below(kHeight), 200, 150);
            }
            ASSERT_TRUE(Settle()) << "after " << changes << ", difference " << LargestDifference();
        }
    };
    ASSERT_NO_FATAL_FAILURE(work(400));
    EXPECT_GT(client->DiffReplies(), 50U);
    EXPECT_LE(client->WholeFrames() - framesBefore, client->Polls() / 242 + 1) << "it went by diffs";

    ASSERT_TRUE(painter->SetMode(640, 480));
    ASSERT_TRUE(Follow([&] { return client->Frame() == zRect(640, 480); }));
    ASSERT_NO_FATAL_FAILURE(work(200));
}

TEST_F(StreamTest, TheCanvasFollowsAWindowThatIsMovedAbout) {
    START(Start());
    XWindows windows(server->Display());
    const xcb_window_t window = windows.Open(50, 60, 320, 200);
    windows.Show(window);
    ASSERT_TRUE(TestClient(daemon->Port())
                    .Call("SetSourceFromMenuItem", "<params><param><record><xml_tag window_id=\"" +
                                                       std::to_string(window) +
                                                       "\"/></record></param></params>"));
    for (int moment = 0; moment < 30; ++moment) {
        if (moment % 3 == 0)
            windows.Place(window, Below(kWidth - 320), Below(kHeight - 200), 320, 200);
        for (int i = 0; i < 5; ++i)
            PaintSomething(200, 200);
        ASSERT_TRUE(Settle()) << "moment " << moment << ", difference " << LargestDifference();
        const xcb_rectangle_t place = windows.Outline(window);
        const zRect rect(place.x, place.y, place.x + place.width - 1, place.y + place.height - 1);
        ASSERT_TRUE(Follow([&] { return client->Frame() == rect; }));
    }
}

TEST_F(StreamTest, AnIdleScreenCostsNoPictures) {
    START(Start());
    // From right behind a whole frame, which comes by itself every 242 replies.
    const uint64_t framesBefore = client->WholeFrames();
    ASSERT_TRUE(Follow([&] { return client->WholeFrames() > framesBefore + 1; }));
    ASSERT_TRUE(Settle());
    const uint64_t before = client->DiffReplies() + client->WholeFrames();
    for (int i = 0; i < 100; ++i)
        ASSERT_TRUE(client->Poll());
    EXPECT_EQ(client->DiffReplies() + client->WholeFrames(), before);

    painter->Fill(320, 160, 16, 32, 0xFFFFFF);
    const uint64_t diffsBefore = client->DiffReplies();
    ASSERT_TRUE(Follow([&] { return client->DiffReplies() > diffsBefore; }));
    EXPECT_EQ(client->Last().pictures[0].place, zRect(320, 160, 335, 199))
        << "one cell, on the grid from each edge";
}

TEST_F(StreamTest, ClientsWithOtherNumbersAndCropsOrThatGiveUpDoNotDisturb) {
    START(Start());
    TestClient cropped(daemon->Port());
    for (int i = 0; i < 20; ++i) {
        painter->Fill(i * 30, i * 20, 80, 80, 0x0000FFU << i);
        const uint32_t numbers[] = {0, 0xFFFFFFFF, 0x80000000 + static_cast<uint32_t>(i)};
        const auto reply =
            cropped.Call("SnapshotByDiffs",
                         "<params><param><value><struct><member><name>crop_left</name><value><int>64</int>"
                         "</value></member><member><name>sequence_id</name><value><string>" +
                             std::to_string(numbers[i % 3]) +
                             "</string></value></member></struct></value></param></params>");
        ASSERT_TRUE(reply);
        EXPECT_EQ(Response(*reply).Attribute("rect"), "64,0,799,599");
        ASSERT_TRUE(client->Poll());
        EXPECT_EQ(client->Last().frame, zRect(0, 0, 799, 599));

        TestClient quitter(daemon->Port());
        quitter.Send(TestClient::Request(TestClient::MethodCall("SnapshotByDiffs")));
        char byte = 0;
        EXPECT_EQ(recv(quitter.Descriptor(), &byte, 1, 0), 1);
    } // And goes, in the middle of its reply.
    ASSERT_TRUE(Settle());
}

} // namespace
