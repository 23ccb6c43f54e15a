#include <ctime>

#include "X11Fixture.h"

namespace {

constexpr int kBound = 20000; ///< Milliseconds.

/// A host that is listened to while its run loop runs.
class X11Reports : public X11Fixture, private host::RefreshListener, private host::DisplaysListener {
  protected:
    void Listen() {
        scope = std::make_unique<host::HostScope>(*machine);
        Displays().RegisterRefreshListener(*this);
        Displays().RegisterDisplaysListener(*this);
    }
    void TearDown() override {
        if (scope) {
            Displays().UnregisterRefreshListener(*this);
            Displays().UnregisterDisplaysListener(*this);
        }
        scope.reset();
    }

    /// Runs the loop until everything of \p areas has been reported, or a bound has passed.
    bool AwaitAll(std::vector<host::Rect> areas) {
        missing = std::move(areas);
        return Run([this] { return missing.empty(); });
    }
    /// Runs the loop until a condition holds; false at the bound.
    bool Run(const std::function<bool()>& condition, int milliseconds = kBound) {
        bool late = false;
        host::RunLoop& loop = machine->RunLoopPort();
        const int bound = loop.AddTimer(milliseconds, [&] {
            late = true;
            loop.Stop();
        });
        const int look = loop.AddTimer(1, [&] {
            if (condition())
                loop.Stop();
        });
        loop.Run();
        loop.RemoveTimer(look);
        loop.RemoveTimer(bound);
        return !late;
    }
    /// Runs the loop although nothing is to come.
    void RunIdle(int milliseconds) {
        Run([] { return false; }, milliseconds);
    }
    /// Until a change was reported that brought what is expected: one comes in several notes.
    bool AwaitChange(const std::function<bool()>& condition) {
        const int before = changes;
        return Run([&] { return changes > before && condition(); });
    }

    int reports = 0;
    double pixels = 0; ///< Reported in all.
    int changes = 0;

  private:
    void ScreenRefreshed(std::span<const host::Rect> areas) override {
        ++reports;
        for (const host::Rect& area : areas) {
            pixels += area.width * area.height;
            std::erase_if(missing, [&](const host::Rect& one) {
                return one.x >= area.x && one.y >= area.y && one.x + one.width <= area.x + area.width &&
                       one.y + one.height <= area.y + area.height;
            });
        }
    }
    void DisplaysChanged() override { ++changes; }

    std::unique_ptr<host::HostScope> scope;
    std::vector<host::Rect> missing;
};

TEST_F(X11Reports, TellWhatIsDrawnAndNothingElse) {
    NEED_X11("640x480x24");
    EXPECT_TRUE(Displays().IsCaptured(0)) << "nobody listens";
    painter->Fill(0, 0, 640, 480, 0x112233);
    Listen();
    EXPECT_FALSE(Displays().IsCaptured(0));
    painter->MovePointer(50, 50);
    RunIdle(50);
    EXPECT_EQ(reports + changes, 0) << "neither the screen as it was, nor the pointer";

    painter->Fill(100, 50, 16, 32, 0xFF0000);
    painter->Fill(600, 400, 40, 80, 0x0000FF);
    EXPECT_TRUE(AwaitAll({{100, 50, 16, 32}, {600, 400, 40, 80}}));
    RunIdle(50);
    EXPECT_EQ(pixels, 16 * 32 + 40 * 80) << "exactly that, once";

    for (int i = 0; i < 50; ++i) {
        painter->Fill(5, 5, 20, 20, static_cast<uint32_t>(i));
        ColourOnScreen(7, 7);
        ASSERT_TRUE(AwaitAll({{5, 5, 20, 20}})) << "pictures swallow no report";
    }

    reports = 0;
    for (int i = 0; i < 20000; ++i)
        painter->Draw(i * 37 % 600, i * 53 % 440, 40, 40, static_cast<uint32_t>(i * 4099));
    painter->Fill(639, 479, 1, 1, 0xFFFFFF);
    EXPECT_TRUE(AwaitAll({{639, 479, 1, 1}}));
    RunIdle(50);
    EXPECT_LE(reports, 4) << "a burst is gathered while nobody looks";
}

TEST_F(X11Reports, OfDrawingDoNotComeWhereTheServerCannotTell) {
    for (const char* extension : {"DAMAGE", "XFIXES"}) {
        NEED_X11("640x480x24", {"-extension", extension});
        Listen();
        EXPECT_TRUE(Displays().IsCaptured(0)) << extension;
        TearDown();
    }
}

TEST_F(X11Reports, TellThatDisplaysChange) {
    NEED_X11("640x480x24");
    Listen();
    const host::DisplayId screen = Displays().MainDisplay();
    ASSERT_TRUE(painter->SetMode(320, 200));
    EXPECT_TRUE(AwaitChange([&] { return Displays().Bounds(screen) == host::Rect{0, 0, 320, 200}; }));
    ASSERT_TRUE(painter->SetMonitor("MORE", "20/10x20/10+10+10"));
    EXPECT_TRUE(AwaitChange([&] { return Ids().size() == 2; }));
    painter->Xrandr("--delmonitor MORE");
    EXPECT_TRUE(AwaitChange([&] { return Ids().size() == 1; }));
}

TEST_F(X11Reports, GoOnWithTheNextServer) {
    NEED_X11("640x480x24", {XServer::PrivateDisplay()});
    Listen();
    const host::DisplayId screen = Displays().MainDisplay();
    painter->Draw(0, 0, 40, 40, 0xFF0000);
    ASSERT_TRUE(Pointer().IsVisible());
    for (const char* size : {"640x480x24", "320x200x24"}) {
        server->Kill();
        EXPECT_TRUE(Run([&] { return Displays().IsCaptured(0); }));
        EXPECT_EQ(ColourOnScreen(1, 1), 0xFFFFFFFF);
        EXPECT_FALSE(Pointer().IsVisible());
        EXPECT_FALSE(machine->WindowServerPort().IsAvailable());
        const clock_t before = clock();
        RunIdle(300);
        EXPECT_LT(clock() - before, CLOCKS_PER_SEC / 5) << "the loop does not spin";

        server->Restart(size);
        ASSERT_TRUE(server->Running()) << server->WhyNot();
        EXPECT_TRUE(AwaitAll({{0, 0, 320, 200}})) << "all of the screen is new";
        EXPECT_FALSE(Displays().IsCaptured(0));
        EXPECT_GT(std::exchange(changes, 0), 0);
        EXPECT_EQ(Displays().MainDisplay(), screen);
        EXPECT_EQ(Displays().Bounds(screen).width, std::stod(size));
        painter = std::make_unique<XPainter>(server->Display());
        painter->Fill(30, 40, 5, 6, 0x778899);
        EXPECT_TRUE(AwaitAll({{30, 40, 5, 6}}));
        EXPECT_EQ(ColourOnScreen(31, 41), 0x778899U);
        EXPECT_TRUE(Pointer().IsVisible());
        EXPECT_TRUE(machine->WindowServerPort().IsAvailable());
    }
    machine->LetGo();
    server->Restart("640x480x24");
    RunIdle(600);
    EXPECT_EQ(ColourOnScreen(1, 1), 0xFFFFFFFF) << "for good";
}

} // namespace
