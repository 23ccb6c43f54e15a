#include <ctime>
#include <functional>

#include "X11Fixture.h"

namespace {

/// A host that is listened to while its run loop runs.
class X11Refresh : public X11Fixture, private host::RefreshListener {
  protected:
    void Listen() {
        scope = std::make_unique<host::HostScope>(*machine);
        Displays().RegisterRefreshListener(*this);
    }
    void TearDown() override {
        if (scope)
            Displays().UnregisterRefreshListener(*this);
        scope.reset();
    }

    /// Runs the loop until everything of \p areas has been reported, or a bound has passed.
    bool AwaitAll(std::vector<host::Rect> areas) {
        missing = std::move(areas);
        return Run([this] { return missing.empty(); }, 5000);
    }
    /// Runs the loop until a condition holds, which is looked at after each report; false at the bound.
    bool Run(std::function<bool()> condition, int milliseconds) {
        done = std::move(condition);
        bool late = false;
        host::RunLoop& loop = machine->RunLoopPort();
        const int bound = loop.AddTimer(milliseconds, [&] {
            late = true;
            loop.Stop();
        });
        if (!done())
            loop.Run();
        loop.RemoveTimer(bound);
        return !late;
    }
    void Reset() {
        reports = 0;
        pixels = 0;
    }

    int reports = 0;
    double pixels = 0; ///< Reported in all.

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
        if (done())
            machine->RunLoopPort().Stop();
    }

    std::unique_ptr<host::HostScope> scope;
    std::vector<host::Rect> missing;
    std::function<bool()> done = [] { return false; };
};

TEST_F(X11Refresh, ReportsWhatIsDrawnAndNothingElse) {
    NEED_X11("640x480x24");
    EXPECT_TRUE(Displays().IsCaptured(0)) << "nobody listens";
    painter->Fill(0, 0, 640, 480, 0x112233);
    Listen();
    EXPECT_FALSE(Displays().IsCaptured(0));
    painter->MovePointer(50, 50);
    EXPECT_FALSE(Run([] { return false; }, 50));
    EXPECT_EQ(reports, 0) << "neither the screen as it was, nor the pointer";

    painter->Fill(100, 50, 16, 32, 0xFF0000);
    EXPECT_TRUE(AwaitAll({{100, 50, 16, 32}}));
    EXPECT_EQ(pixels, 16 * 32) << "exactly that";
    Reset();
    painter->Fill(0, 0, 5, 5, 0x00FF00);
    painter->Fill(600, 400, 40, 80, 0x0000FF);
    EXPECT_TRUE(AwaitAll({{0, 0, 5, 5}, {600, 400, 40, 80}}));
    EXPECT_EQ(pixels, 25 + 40 * 80);
    EXPECT_FALSE(Run([] { return false; }, 50)) << "everything is told once";
    EXPECT_EQ(pixels, 25 + 40 * 80);
}

TEST_F(X11Refresh, ABurstIsGatheredWhileNobodyLooks) {
    NEED_X11("640x480x24");
    Listen();
    for (int i = 0; i < 20000; ++i)
        painter->Draw(i * 37 % 600, i * 53 % 440, 40, 40, static_cast<uint32_t>(i * 4099));
    painter->Fill(639, 479, 1, 1, 0xFFFFFF);
    EXPECT_TRUE(AwaitAll({{639, 479, 1, 1}}));
    EXPECT_FALSE(Run([] { return false; }, 50));
    EXPECT_LE(reports, 4) << "however many drawings there were";
}

TEST_F(X11Refresh, KeepsUpWithOneWhoDrawsAllTheTime) {
    NEED_X11("640x480x24");
    Listen();
    for (int i = 0; i < 300; ++i) {
        const double x = i * 37 % 600;
        painter->Fill(static_cast<int>(x), 7, 40, 40, static_cast<uint32_t>(i));
        ASSERT_TRUE(AwaitAll({{x, 7, 40, 40}})) << i;
    }
}

TEST_F(X11Refresh, PicturesDoNotSwallowReports) {
    NEED_X11("640x480x24");
    Listen();
    for (int i = 0; i < 100; ++i) {
        host::Image image;
        painter->Fill(5, 5, 20, 20, static_cast<uint32_t>(i));
        ASSERT_EQ(Displays().Picture({0, 0, 640, 480}, image), 0);
        ASSERT_TRUE(AwaitAll({{5, 5, 20, 20}})) << i;
    }
}

TEST_F(X11Refresh, IsCapturedWhereTheServerCannotTell) {
    for (const char* extension : {"DAMAGE", "XFIXES"}) {
        machine.reset();
        painter.reset();
        NEED_X11("640x480x24", {"-extension", extension});
        Listen();
        EXPECT_TRUE(Displays().IsCaptured(0)) << extension;
        TearDown();
    }
}

TEST_F(X11Refresh, OutlivesTheServer) {
    NEED_X11("640x480x24");
    Listen();
    painter->Draw(0, 0, 40, 40, 0xFF0000);
    server->Kill();
    EXPECT_FALSE(Run([] { return false; }, 100)) << "the loop goes on, without spinning";
    EXPECT_TRUE(Displays().IsCaptured(0));
    const clock_t before = clock();
    EXPECT_FALSE(Run([] { return false; }, 200));
    EXPECT_LT(clock() - before, CLOCKS_PER_SEC / 20);
}

} // namespace
