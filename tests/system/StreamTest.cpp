// A client that composes whole frames and changed regions, beside a screen on which someone paints.

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <random>

#include <gtest/gtest.h>

#include "Daemon.h"
#include "StreamClient.h"
#include "XPainter.h"
#include "XServer.h"

namespace {

constexpr int kWidth = 800;
constexpr int kHeight = 600;

/// What is on the screen, kept by the one who paints. Rows top first, 0xRRGGBB.
class PaintedScreen {
  public:
    explicit PaintedScreen(XPainter& painter) : fPainter(painter) { Fill(0, 0, kWidth, kHeight, 0x304050); }

    void Fill(int x, int y, int width, int height, uint32_t colour) {
        fPainter.Draw(x, y, width, height, colour);
        for (int row = y; row < std::min(y + height, kHeight); ++row)
            std::fill_n(fPixels.begin() + row * kWidth + x, std::min(width, kWidth - x), colour);
    }
    void Await() { fPainter.Sync(); }
    uint32_t At(int x, int y) const { return fPixels[static_cast<size_t>(y * kWidth + x)]; }

  private:
    XPainter& fPainter;
    std::vector<uint32_t> fPixels = std::vector<uint32_t>(kWidth * kHeight);
};

class StreamTest : public testing::Test {
  protected:
    void Start() {
        server = std::make_unique<XServer>(std::to_string(kWidth) + "x" + std::to_string(kHeight) + "x24");
        if (!server->Running())
            SKIP_OR_FAIL(server->WhyNot());
        painter = std::make_unique<XPainter>(server->Display());
        screen = std::make_unique<PaintedScreen>(*painter);
        screen->Await();
        daemon = std::make_unique<Daemon>(
            std::vector<std::string>{"--host", "x11", "--display", server->Display()});
        ASSERT_NE(daemon->Port(), 0) << daemon->ReadyLine();
        client = std::make_unique<StreamClient>(daemon->Port());
    }

    /// Follows the stream until a condition holds; false when it doesn't in far more time than that takes.
    bool Follow(const std::function<bool()>& condition) {
        screen->Await();
        const auto bound = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (std::chrono::steady_clock::now() < bound) {
            if (!client->Poll())
                return false;
            if (condition())
                return true;
        }
        return false;
    }
    /// Until the canvas shows the screen.
    bool Settle() {
        return Follow([this] { return !client->HadPictures() && LargestDifference() <= kTolerance; });
    }

    /// JPEG blurs what is next to an edge: only places whose neighbours have their colour are compared.
    int LargestDifference() const {
        int largest = 0;
        for (int y = kBlur; y < kHeight - kBlur; y += 8) {
            for (int x = kBlur; x < kWidth - kBlur; x += 8) {
                if (IsPlain(x, y))
                    largest = std::max(largest, client->Difference(x, y, screen->At(x, y)));
            }
        }
        return largest;
    }

    static constexpr int kTolerance = 8;
    static constexpr int kBlur = 15; // The extent of a block of halved colour.

    std::unique_ptr<XServer> server;
    std::unique_ptr<XPainter> painter;
    std::unique_ptr<PaintedScreen> screen;
    std::unique_ptr<Daemon> daemon;
    std::unique_ptr<StreamClient> client;

  private:
    bool IsPlain(int x, int y) const {
        const uint32_t colour = screen->At(x, y);
        for (int dy = -kBlur; dy <= kBlur; ++dy) {
            for (int dx = -kBlur; dx <= kBlur; ++dx) {
                if (screen->At(x + dx, y + dy) != colour)
                    return false;
            }
        }
        return true;
    }
};

TEST_F(StreamTest, TheCanvasFollowsTheScreen) {
    ASSERT_NO_FATAL_FAILURE(Start());
    if (IsSkipped())
        return;
    ASSERT_TRUE(Settle());
    const int framesBefore = client->WholeFrames();

    std::mt19937 random(20240607);
    const auto below = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
    for (int changes = 0, moment = 0; changes < 600; ++moment) {
        for (int burst = 1 + below(16); burst > 0; --burst, ++changes) {
            const int width = 1 + below(burst % 3 ? 60 : 400);
            const int height = 1 + below(burst % 3 ? 60 : 300);
            screen->Fill(below(kWidth), below(kHeight), width, height, random() & 0xFFFFFF);
            if (burst % 3 == 0) {
                ASSERT_TRUE(client->Poll());
            }
        }
        ASSERT_TRUE(Settle()) << "moment " << moment << ", difference " << LargestDifference();
    }
    EXPECT_GT(client->DiffReplies(), 50);
    EXPECT_LE(client->WholeFrames() - framesBefore, client->Polls() / 242 + 1) << "it went by diffs";
}

TEST_F(StreamTest, AnIdleScreenCostsNoPictures) {
    ASSERT_NO_FATAL_FAILURE(Start());
    if (IsSkipped())
        return;
    ASSERT_TRUE(Settle());
    const int before = client->DiffReplies() + client->WholeFrames();
    for (int i = 0; i < 100; ++i)
        ASSERT_TRUE(client->Poll());
    EXPECT_EQ(client->DiffReplies() + client->WholeFrames(), before);

    screen->Fill(320, 160, 16, 32, 0xFFFFFF);
    const int diffsBefore = client->DiffReplies();
    ASSERT_TRUE(Follow([&] { return client->DiffReplies() > diffsBefore; }));
    EXPECT_EQ(client->LastRect(), "320,160,335,199") << "one cell, on the grid from each edge";
}

TEST_F(StreamTest, ClientsWithOtherNumbersAndCropsDoNotDisturb) {
    ASSERT_NO_FATAL_FAILURE(Start());
    if (IsSkipped())
        return;
    StreamClient cropped(daemon->Port(),
                         "<member><name>crop_left</name><value><int>64</int></value></member>");
    for (int i = 0; i < 20; ++i) {
        screen->Fill(i * 30, i * 20, 80, 80, 0x0000FFU << i);
        ASSERT_TRUE(cropped.Poll());
        ASSERT_TRUE(client->Poll());
        cropped.Forget(i % 2 ? 0xFFFFFFFF : 0x80000000 + static_cast<uint32_t>(i));
    }
    ASSERT_TRUE(Settle());
}

} // namespace
