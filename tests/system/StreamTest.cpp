// A client that composes whole frames and changed regions, beside a screen on which someone paints.

#include <algorithm>
#include <functional>
#include <memory>
#include <random>

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
        return Follow([this] { return !client->HadPictures() && LargestDifference() <= kTolerance; });
    }

    /// Between the canvas and a screenshot of its place. JPEG blurs what is next to an edge: only places
    /// whose neighbours have their colour are compared.
    int LargestDifference() {
        const int width = client->Width();
        const int height = client->Height();
        const std::vector<uint32_t> shot = painter->Screenshot(client->Left(), client->Top(), width, height);
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
    const int framesBefore = client->WholeFrames();

    for (int changes = 0, moment = 0; changes < 600; ++moment) {
        for (int burst = 1 + Below(16); burst > 0; --burst, ++changes) {
            PaintSomething(burst % 3 ? 60 : 400, burst % 3 ? 60 : 300);
            if (burst % 3 == 0) {
                ASSERT_TRUE(client->Poll());
            }
        }
        ASSERT_TRUE(Settle()) << "moment " << moment << ", difference " << LargestDifference();
    }
    EXPECT_GT(client->DiffReplies(), 50);
    EXPECT_LE(client->WholeFrames() - framesBefore, client->Polls() / 242 + 1) << "it went by diffs";
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
        ASSERT_TRUE(Follow([&] { return client->Left() == place.x && client->Top() == place.y; }));
        ASSERT_TRUE(client->Width() == place.width && client->Height() == place.height);
    }
}

TEST_F(StreamTest, AnIdleScreenCostsNoPictures) {
    START(Start());
    // From right behind a whole frame, which comes by itself every 242 replies.
    const int framesBefore = client->WholeFrames();
    ASSERT_TRUE(Follow([&] { return client->WholeFrames() > framesBefore + 1; }));
    ASSERT_TRUE(Settle());
    const int before = client->DiffReplies() + client->WholeFrames();
    for (int i = 0; i < 100; ++i)
        ASSERT_TRUE(client->Poll());
    EXPECT_EQ(client->DiffReplies() + client->WholeFrames(), before);

    painter->Fill(320, 160, 16, 32, 0xFFFFFF);
    const int diffsBefore = client->DiffReplies();
    ASSERT_TRUE(Follow([&] { return client->DiffReplies() > diffsBefore; }));
    EXPECT_EQ(client->Attribute("section_rect_1"), "320,160,335,199")
        << "one cell, on the grid from each edge";
}

TEST_F(StreamTest, ClientsWithOtherNumbersAndCropsOrThatGiveUpDoNotDisturb) {
    START(Start());
    const std::string crop = "<member><name>crop_left</name><value><int>64</int></value></member>";
    StreamClient cropped(daemon->Port(), crop);
    for (int i = 0; i < 20; ++i) {
        painter->Fill(i * 30, i * 20, 80, 80, 0x0000FFU << i);
        ASSERT_TRUE(cropped.Poll());
        EXPECT_EQ(cropped.Attribute("rect"), "64,0,799,599");
        ASSERT_TRUE(client->Poll());
        EXPECT_EQ(client->Attribute("rect"), "0,0,799,599");
        const uint32_t numbers[] = {0, 0xFFFFFFFF, 0x80000000 + static_cast<uint32_t>(i)};
        cropped.Forget(numbers[i % 3]);

        TestClient quitter(daemon->Port());
        quitter.Send(TestClient::Request(TestClient::MethodCall("SnapshotByDiffs")));
        char byte = 0;
        EXPECT_EQ(recv(quitter.Descriptor(), &byte, 1, 0), 1);
    } // And goes, in the middle of its reply.
    ASSERT_TRUE(Settle());
}

} // namespace
