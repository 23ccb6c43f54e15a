#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <sstream>
#include <thread>
#include <unistd.h>

#include "X11Fixture.h"

using host::X11Transport;

namespace {

constexpr int kBlock = 20;

/// A colour of its own for each block of the screen.
uint32_t block_colour(int column, int row) {
    return static_cast<uint32_t>((column * 37 + 11) & 0xFF) << 16 |
           static_cast<uint32_t>((row * 59 + 5) & 0xFF) << 8 |
           static_cast<uint32_t>((column * 13 + row * 101) & 0xFF);
}

class X11Picture : public X11Fixture {
  protected:
    void PaintBlocks(int width, int height) {
        for (int row = 0; row < height / kBlock; ++row) {
            for (int column = 0; column < width / kBlock; ++column)
                painter->Fill(column * kBlock, row * kBlock, kBlock, kBlock, block_colour(column, row));
        }
    }

    /// Looks at every pixel of the picture of an area; places outside of the screen are black.
    void ExpectBlocks(int x, int y, int width, int height, int screenWidth, int screenHeight,
                      int tolerance = 0) {
        host::Image image;
        ASSERT_EQ(Displays().Picture({double(x), double(y), double(width), double(height)}, image), 0);
        ASSERT_EQ(image.width, width);
        ASSERT_EQ(image.height, height);
        for (int row = 0; row < height; ++row) {
            for (int column = 0; column < width; ++column) {
                const int atX = x + column;
                const int atY = y + row;
                const bool isOnScreen = atX >= 0 && atX < screenWidth && atY >= 0 && atY < screenHeight;
                const uint32_t wanted = isOnScreen ? block_colour(atX / kBlock, atY / kBlock) : 0;
                ASSERT_LE(Difference(ColourAt(image, column, row), wanted), tolerance) << atX << "," << atY;
            }
        }
    }

    static int Difference(uint32_t one, uint32_t other) {
        int most = 0;
        for (int shift = 0; shift < 24; shift += 8)
            most = std::max(most, std::abs(static_cast<int>(one >> shift & 0xFF) -
                                           static_cast<int>(other >> shift & 0xFF)));
        return most;
    }
};

TEST_F(X11Picture, ShowsWhatIsOnTheScreen) {
    NEED_X11("320x240x24");
    PaintBlocks(320, 240);
    ExpectBlocks(0, 0, 320, 240, 320, 240);
    ExpectBlocks(33, 41, 101, 57, 320, 240);
    ExpectBlocks(319, 239, 1, 1, 320, 240);
    EXPECT_EQ(machine->Transport(), X11Transport::kSharedMemory);

    painter->Fill(100, 100, 10, 10, 0x123456);
    host::Image image;
    ASSERT_EQ(Displays().Picture({100, 100, 10, 10}, image), 0);
    EXPECT_EQ(ColourAt(image, 0, 0), 0x123456U) << "each picture is a new one";
}

TEST_F(X11Picture, ComesThroughTheSocketWhereMemoryCannotBeShared) {
    NEED_X11("320x240x24", {"-extension", "MIT-SHM"});
    PaintBlocks(320, 240);
    ExpectBlocks(0, 0, 320, 240, 320, 240);
    ExpectBlocks(33, 41, 101, 57, 320, 240);
    EXPECT_EQ(machine->Transport(), X11Transport::kSocket);
}

TEST_F(X11Picture, ComesThroughTheSocketOnDemand) {
    NEED_X11("320x240x24", {}, X11Transport::kSocket);
    PaintBlocks(320, 240);
    ExpectBlocks(-7, 13, 320, 240, 320, 240);
    EXPECT_EQ(machine->Transport(), X11Transport::kSocket);
}

TEST_F(X11Picture, IsConvertedFromOtherDepths) {
    const struct {
        const char* screen;
        int depth;
        int tolerance;
    } depths[] = {{"320x240x16", 16, 8}, {"321x240x16", 16, 8}, {"320x240x30", 30, 1}};
    for (const auto& row : depths) {
        for (const X11Transport transport : {X11Transport::kSharedMemory, X11Transport::kSocket}) {
            SCOPED_TRACE(row.screen);
            machine.reset();
            painter.reset();
            NEED_X11(row.screen, {}, transport);
            ASSERT_EQ(painter->Depth(), row.depth);
            PaintBlocks(320, 240);
            ExpectBlocks(0, 0, 320, 240, 320, 240, row.tolerance);
            ExpectBlocks(15, 17, 33, 29, 320, 240, row.tolerance);
        }
    }
}

TEST_F(X11Picture, IsBlackOutsideOfTheScreen) {
    for (const X11Transport transport : {X11Transport::kSharedMemory, X11Transport::kSocket}) {
        machine.reset();
        painter.reset();
        NEED_X11("320x240x24", {}, transport);
        PaintBlocks(320, 240);
        const int areas[][4] = {{-10, -20, 50, 60},  {300, 220, 50, 60},     {-10, -10, 340, 260},
                                {-100, 0, 100, 10},  {320, 0, 10, 10},       {0, 240, 10, 10},
                                {-30000, 5, 20, 20}, {65000, 65000, 20, 20}, {-65000, 100, 65500, 2}};
        for (const auto& a : areas)
            ExpectBlocks(a[0], a[1], a[2], a[3], 320, 240);
        ExpectBlocks(0, 0, 320, 240, 320, 240);
    }
}

TEST_F(X11Picture, IsRefusedForAbsurdAreas) {
    NEED_X11("320x240x24");
    const double nan = std::nan("");
    const double infinity = std::numeric_limits<double>::infinity();
    const host::Rect absurd[] = {{0, 0, 0, 10},           {0, 0, 10, -1},          {nan, 0, 10, 10},
                                 {0, 0, nan, 10},         {0, 0, infinity, 10},    {-infinity, 0, 10, 10},
                                 {2147483648.0, 0, 1, 1}, {0, 0, 1, 4294967296.0}, {0, 0, 65535, 65535}};
    host::Image image;
    for (const host::Rect& area : absurd)
        EXPECT_EQ(Displays().Picture(area, image), -1) << area.x << " " << area.width << " " << area.height;
    EXPECT_EQ(Displays().Picture({0, 0, 10, 10}, image), 0);
}

TEST_F(X11Picture, FollowsTheScreensSize) {
    NEED_X11("640x480x24");
    painter->Fill(0, 0, 640, 480, 0x204060);
    host::Image image;
    ASSERT_EQ(Displays().Picture({0, 0, 640, 480}, image), 0);

    ASSERT_EQ(painter->Xrandr("--newmode small 0 320 0 0 320 240 0 0 240"), 0) << "is xrandr installed?";
    ASSERT_EQ(painter->Xrandr("--addmode screen small"), 0);
    ASSERT_EQ(painter->Xrandr("--output screen --mode small"), 0);
    ASSERT_EQ(Displays().Picture({0, 0, 640, 480}, image), 0);
    EXPECT_EQ(image.width, 640);
    EXPECT_EQ(ColourAt(image, 600, 400), 0U) << "this is no longer on the screen";
    std::string whyNot;
    const auto latecomer = host::X11Host::Open(server->Display().c_str(), whyNot);
    ASSERT_NE(latecomer, nullptr) << whyNot;
    ASSERT_EQ(latecomer->DisplaysPort().Picture({0, 0, 320, 240}, image), 0);
    ASSERT_EQ(painter->Xrandr("--output screen --mode 640x480"), 0);
    painter->Fill(0, 0, 640, 480, 0x806040);
    ASSERT_EQ(Displays().Picture({0, 0, 640, 480}, image), 0);
    EXPECT_EQ(ColourAt(image, 600, 400), 0x806040U);
    ASSERT_EQ(latecomer->DisplaysPort().Picture({0, 0, 640, 480}, image), 0);
    EXPECT_EQ(ColourAt(image, 639, 479), 0x806040U) << "its segment has to grow";
}

TEST_F(X11Picture, ComesThroughMemoryThatIsPrivateAndNameless) {
    NEED_X11("320x240x24");
    host::Image image;
    ASSERT_EQ(Displays().Picture({0, 0, 16, 16}, image), 0);
    ASSERT_EQ(Displays().Picture({0, 0, 320, 240}, image), 0);
    std::ifstream segments("/proc/sysvipc/shm");
    std::string heading;
    std::getline(segments, heading);
    int own = 0;
    for (std::string line; std::getline(segments, line);) {
        std::istringstream columns(line);
        long key, id, mode, size, creator, lastUser, attached;
        columns >> key >> id >> mode >> size >> creator >> lastUser >> attached;
        if (creator != getpid())
            continue;
        ++own;
        EXPECT_EQ(mode, 1600) << "removed with the last user, for its owner alone";
        EXPECT_EQ(attached, 2);
    }
    EXPECT_EQ(own, 1);
}

TEST_F(X11Picture, EqualsAReadOfTheFramebuffer) {
    NEED_X11("640x480x24");
    ASSERT_EQ(painter->Xrandr("--setmonitor LEFT 320/100x480/100+0+0 screen"), 0);
    ASSERT_EQ(painter->Xrandr("--setmonitor RIGHT 320/100x300/100+320+100 none"), 0);
    PaintBlocks(640, 480);
    std::vector<host::DisplayId> ids;
    Displays().ActiveDisplays(ids);
    for (const host::DisplayId id : ids) {
        const host::Rect place = Displays().Bounds(id);
        const auto framebuffer = Displays().OpenFramebuffer(id);
        ASSERT_NE(framebuffer, nullptr);
        // 100 by 60 pixels, 30 from the left and 20 from the bottom.
        std::vector<uint8_t> read(100 * 60 * 4);
        ASSERT_EQ(framebuffer->Read(30, 20, 100, 60, read.data()), 0);
        host::Image image;
        ASSERT_EQ(Displays().Picture({place.x + 30, place.y + place.height - 80, 100, 60}, image), 0);
        for (int y = 0; y < 60; ++y) {
            for (int x = 0; x < 100; ++x) {
                const uint8_t* pixel = &read[static_cast<size_t>((59 - y) * 100 + x) * 4];
                ASSERT_EQ(static_cast<uint32_t>(pixel[2] << 16 | pixel[1] << 8 | pixel[0]),
                          ColourAt(image, x, y));
                ASSERT_EQ(pixel[3], 255);
            }
        }
        EXPECT_EQ(framebuffer->Read(30, 20, 0, 60, read.data()), 0);
        EXPECT_EQ(framebuffer->Read(0, 0, 70000, 70000, read.data()), -1);
    }
    EXPECT_EQ(Displays().OpenFramebuffer(12345), nullptr);
}

TEST_F(X11Picture, SurvivesNotesThatNobodyAskedFor) {
    NEED_X11("320x240x24");
    PaintBlocks(320, 240);
    for (int i = 0; i < 50; ++i) {
        painter->ChangeKeyboardMap();
        host::Image image;
        ASSERT_EQ(Displays().Picture({0, 0, 16, 16}, image), 0);
    }
    ExpectBlocks(0, 0, 320, 240, 320, 240);
}

TEST_F(X11Picture, FailsWhenTheServerDiesInTheMiddle) {
    NEED_X11("1280x1024x24");
    std::atomic<int> pictures{0};
    std::thread killer([&] {
        while (pictures < 20)
            std::this_thread::yield();
        server->Kill();
    });
    host::Image image;
    while (Displays().Picture({0, 0, 1280, 1024}, image) == 0)
        ++pictures;
    EXPECT_GE(pictures, 20);
    pictures = 20; // Whatever happened, the other thread ends.
    killer.join();
    EXPECT_EQ(Displays().Picture({0, 0, 1280, 1024}, image), -1);
}

TEST_F(X11Picture, FailsForGoodWhenTheServerDies) {
    for (const X11Transport transport : {X11Transport::kSharedMemory, X11Transport::kSocket}) {
        machine.reset();
        painter.reset();
        NEED_X11("320x240x24", {}, transport);
        host::Image image;
        ASSERT_EQ(Displays().Picture({0, 0, 320, 240}, image), 0);
        ASSERT_TRUE(machine->PointerPort().IsVisible());
        server->Kill();
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < 100; ++i) {
            EXPECT_EQ(Displays().Picture({0, 0, 320, 240}, image), -1);
            EXPECT_EQ(Displays().Picture({-5, -5, 3, 3}, image), -1);
        }
        std::vector<host::DisplayId> ids;
        EXPECT_EQ(Displays().ActiveDisplays(ids), -1);
        EXPECT_EQ(Displays().MainDisplay(), 0U);
        EXPECT_EQ(Displays().Bounds(1).width, 0);
        EXPECT_EQ(Displays().ProductName(1), "");
        EXPECT_FALSE(machine->PointerPort().IsVisible());
        host::Point location;
        EXPECT_EQ(machine->PointerPort().Location(location), -1);
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
    }
}

} // namespace
