#include <atomic>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <unistd.h>

#include "AbsurdAreas.h"
#include "X11Fixture.h"

using host::X11Transport;

namespace {

constexpr int kBlock = 20;
constexpr int kWidth = 320;
constexpr int kHeight = 240;

/// A colour of its own for each block of the screen; black beside the screen.
uint32_t colour_at(int x, int y) {
    if (x < 0 || x >= kWidth || y < 0 || y >= kHeight)
        return 0;
    const int column = x / kBlock;
    const int row = y / kBlock;
    return static_cast<uint32_t>((column * 37 + 11) & 0xFF) << 16 |
           static_cast<uint32_t>((row * 59 + 5) & 0xFF) << 8 |
           static_cast<uint32_t>((column * 13 + row * 101) & 0xFF);
}

int difference(uint32_t one, uint32_t other) {
    int most = 0;
    for (int shift = 0; shift < 24; shift += 8)
        most = std::max(
            most, std::abs(static_cast<int>(one >> shift & 0xFF) - static_cast<int>(other >> shift & 0xFF)));
    return most;
}

class X11Picture : public X11Fixture {
  protected:
    void PaintBlocks() {
        for (int y = 0; y < kHeight; y += kBlock) {
            for (int x = 0; x < kWidth; x += kBlock)
                painter->Draw(x, y, kBlock, kBlock, colour_at(x, y));
        }
        painter->Sync();
    }
    /// The largest difference of any pixel of the picture of an area; 256 without such a picture.
    int WorstOf(int x, int y, int width, int height) {
        host::Image image;
        if (Displays().Picture({double(x), double(y), double(width), double(height)}, image) != 0 ||
            image.width != width || image.height != height)
            return 256;
        int worst = 0;
        for (int row = 0; row < height; ++row) {
            for (int column = 0; column < width; ++column)
                worst =
                    std::max(worst, difference(ColourAt(image, column, row), colour_at(x + column, y + row)));
        }
        return worst;
    }
};

TEST_F(X11Picture, ShowsTheScreenHoweverItComes) {
    const std::vector<std::string> noSharing{"-extension", "MIT-SHM"};
    const struct {
        const char* screen;
        std::vector<std::string> arguments;
        X11Transport wanted, used;
        int tolerance;
    } ways[] = {
        {"320x240x24", {}, X11Transport::kSharedMemory, X11Transport::kSharedMemory, 0},
        {"320x240x24", {}, X11Transport::kSocket, X11Transport::kSocket, 0},
        {"320x240x24", noSharing, X11Transport::kSharedMemory, X11Transport::kSocket, 0},
        {"321x240x16", {}, X11Transport::kSharedMemory, X11Transport::kSharedMemory, 8},
        {"320x240x16", {}, X11Transport::kSocket, X11Transport::kSocket, 8},
        {"320x240x30", {}, X11Transport::kSharedMemory, X11Transport::kSharedMemory, 1},
    };
    const int areas[][4] = {{0, 0, kWidth, kHeight}, {33, 41, 101, 57},      {319, 239, 1, 1},
                            {-10, -20, 50, 60},      {-5, -5, 325, 250},     {-30000, 5, 20, 20},
                            {0, 240, 10, 10},        {-7, 13, 320, 200},     {65000, 65000, 20, 20},
                            {-65000, 100, 65500, 2}, {0, 0, kWidth, kHeight}};
    for (const auto& way : ways) {
        SCOPED_TRACE(way.screen);
        NEED_X11(way.screen, way.arguments, way.wanted);
        PaintBlocks();
        for (const auto& a : areas)
            EXPECT_LE(WorstOf(a[0], a[1], a[2], a[3]), way.tolerance) << a[0] << "," << a[1];
        EXPECT_EQ(machine->Transport(), way.used);
        for (int i = 0; i < 3; ++i) {
            painter->ChangeKeyboardMap(); // Sends a note that nobody asked for.
            painter->Fill(100, 100, 10, 10, i % 2 ? 0xFFFFFF : 0);
            EXPECT_EQ(ColourOnScreen(105, 105), i % 2 ? 0xFFFFFFU : 0U) << "each picture is a new one";
        }
    }
}

TEST_F(X11Picture, FollowsTheScreensSize) {
    NEED_X11("640x480x24");
    painter->Fill(0, 0, 640, 480, 0x204060);
    EXPECT_EQ(ColourOnScreen(600, 400), 0x204060U);
    ASSERT_TRUE(painter->SetMode(320, 240));
    EXPECT_EQ(ColourOnScreen(600, 400), 0U) << "this is no longer on the screen";
    std::string whyNot;
    const auto latecomer = host::X11Host::Open(server->Display().c_str(), whyNot);
    ASSERT_NE(latecomer, nullptr) << whyNot;
    host::Image image;
    ASSERT_EQ(latecomer->DisplaysPort().Picture({0, 0, 320, 240}, image), 0);
    ASSERT_EQ(painter->Xrandr("--output screen --mode 640x480"), 0);
    painter->Fill(0, 0, 640, 480, 0x806040);
    EXPECT_EQ(ColourOnScreen(600, 400), 0x806040U);
    ASSERT_EQ(latecomer->DisplaysPort().Picture({0, 0, 640, 480}, image), 0);
    EXPECT_EQ(ColourAt(image, 639, 479), 0x806040U) << "its segment has to grow";
}

TEST_F(X11Picture, ComesThroughMemoryThatIsPrivateAndNameless) {
    NEED_X11("320x240x24");
    ASSERT_NE(ColourOnScreen(1, 1), 0xFFFFFFFF);
    std::ifstream segments("/proc/sysvipc/shm");
    std::string line;
    int own = 0;
    while (std::getline(segments, line)) {
        std::istringstream columns(line);
        long key, id, mode, size, creator, lastUser, attached;
        columns >> key >> id >> mode >> size >> creator >> lastUser >> attached;
        if (!columns || creator != getpid())
            continue;
        ++own;
        EXPECT_EQ(mode, 1600) << "removed with the last user, for its owner alone";
        EXPECT_EQ(attached, 2);
    }
    EXPECT_EQ(own, 1);
}

TEST_F(X11Picture, EqualsAReadOfTheFramebuffer) {
    NEED_X11("320x240x24");
    ASSERT_TRUE(painter->SetMonitor("LEFT", "120/100x240/100+0+0"));
    ASSERT_TRUE(painter->SetMonitor("RIGHT", "200/100x200/100+120+30"));
    PaintBlocks();
    for (const host::DisplayId id : Ids()) {
        const host::Rect place = Displays().Bounds(id);
        const auto framebuffer = Displays().OpenFramebuffer(id);
        ASSERT_NE(framebuffer, nullptr);
        // 70 by 60 pixels, 30 from the left and 20 from the bottom.
        std::vector<uint8_t> read(70 * 60 * 4);
        ASSERT_EQ(framebuffer->Read(30, 20, 70, 60, read.data()), 0);
        const host::Image image{read.data(), 70, 60, 70 * 4};
        int wrong = 0;
        for (int y = 0; y < 60; ++y) {
            for (int x = 0; x < 70; ++x) {
                const int atY = static_cast<int>(place.y + place.height) - 21 - y;
                wrong += ColourAt(image, x, y) != colour_at(static_cast<int>(place.x) + 30 + x, atY) ||
                         read[static_cast<size_t>(y * 70 + x) * 4 + 3] != 255;
            }
        }
        EXPECT_EQ(wrong, 0);
        EXPECT_EQ(framebuffer->Read(30, 20, 0, 60, read.data()), 0);
        EXPECT_EQ(framebuffer->Read(0, 0, 70000, 70000, read.data()), -1);
    }
    EXPECT_EQ(Displays().OpenFramebuffer(12345), nullptr);
}

TEST_F(X11Picture, FailsAtOnceWhenTheServerHasDied) {
    for (const X11Transport transport : {X11Transport::kSharedMemory, X11Transport::kSocket}) {
        NEED_X11("640x480x24", {}, transport);
        std::atomic<int> pictures{0};
        std::thread killer([&] {
            while (pictures < 20)
                std::this_thread::yield();
            server->Kill();
        });
        host::Image image;
        while (Displays().Picture({0, 0, 640, 480}, image) == 0)
            ++pictures;
        EXPECT_GE(pictures, 20);
        pictures = 20; // Whatever happened, the other thread ends.
        killer.join();
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < 100; ++i) {
            EXPECT_EQ(Displays().Picture({0, 0, 320, 240}, image), -1);
            EXPECT_EQ(Displays().Picture({-5, -5, 3, 3}, image), -1);
        }
        std::vector<host::DisplayId> ids;
        EXPECT_EQ(Displays().ActiveDisplays(ids), -1);
        EXPECT_EQ(Displays().MainDisplay(), 0U);
        EXPECT_EQ(Displays().Bounds(1).width, 0);
        EXPECT_FALSE(Pointer().IsVisible());
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
    }
}

} // namespace
