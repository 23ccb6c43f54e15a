// The commands record and pipe, with a real server whose card flashes when its tone clicks.

#include <csignal>
#include <filesystem>

#include <gmock/gmock.h>

#include "Await.h"
#include "Daemon.h"
#include "MediaFile.h"
#include "TestFolder.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;

/// In the box that flashes, on the first card.
constexpr int kFlashX = 100;
constexpr int kFlashY = 520;
constexpr int kLit = 128;
constexpr double kFrame = 1.0 / 30;

class RecordTest : public testing::Test {
  protected:
    void SetUp() override { ASSERT_NE(daemon.Port(), 0) << daemon.ReadyLine(); }

    std::string Server() const { return "127.0.0.1:" + std::to_string(daemon.Port()); }
    std::string Path(const char* name) const { return (folder / name).string(); }

    /// Runs a command of the client in a shell, as users do; the first line it prints goes to `line`.
    int Run(const std::string& arguments, const std::string& before = "") {
        Program program({"sh", "-c", before + " " GLASSPANE_CLIENT " " + arguments});
        line = program.ReadLine(std::chrono::seconds(60));
        return program.WaitForExit(std::chrono::seconds(60)).value_or(-1);
    }

    Daemon daemon{{"--host", "builtin"}};
    TestFolder folder;
    std::string line;
};

/// How many clicks lie within a frame of a flash's begin. Those that were heard while the machine was too
/// busy for pictures tell nothing; of the others each must.
int clicks_with_flashes(const MediaFile& file) {
    int found = 0;
    for (const double click : file.Clicks()) {
        const auto& shots = file.shots;
        bool isSmooth = click > shots.front().time + 0.2 && click < shots.back().time - 0.2;
        bool isNear = false;
        for (size_t i = 1; i < shots.size(); ++i) {
            const double step = shots[i].time - shots[i - 1].time;
            isSmooth = isSmooth && (std::abs(shots[i].time - click) > 0.1 || step < 0.05);
            isNear = isNear || (shots[i].centre > kLit && shots[i - 1].centre < kLit &&
                                click > shots[i - 1].time - kFrame && click < shots[i].time + kFrame);
        }
        found += isSmooth && isNear;
        EXPECT_TRUE(isNear || !isSmooth) << "the click at " << click << " s has no flash";
    }
    return found;
}

void expect_sync(const MediaFile& file, double seconds, int clicks) {
    ASSERT_TRUE(file.isReadable);
    EXPECT_EQ(file.width, 1280);
    EXPECT_EQ(file.height, 720);
    ASSERT_FALSE(file.shots.empty());
    EXPECT_TRUE(file.IsGrowing());
    EXPECT_TRUE(file.isContinuous);
    EXPECT_NEAR(file.shots.back().time - file.shots.front().time, seconds, 0.2);
    EXPECT_NEAR(file.SoundEnd() - file.shots.front().time, seconds, 0.5);
    EXPECT_GE(clicks_with_flashes(file), clicks);
}

TEST_F(RecordTest, KeepsPictureAndSoundInSync) {
    Daemon second({"--host", "builtin"}); // Sound is for one client at a time.
    Program other({GLASSPANE_CLIENT, "record", "127.0.0.1:" + std::to_string(second.Port()), "-o",
                   Path("film.MP4"), "--duration", "6"});
    EXPECT_EQ(Run("record " + Server() + " --duration 6 --json -o " + Path("film.mkv")), 0);
    EXPECT_THAT(line, StartsWith("{\"file\":\"" + Path("film.mkv")));
    EXPECT_THAT(line, HasSubstr("\"end\":\"duration\""));
    EXPECT_EQ(other.WaitForExit(std::chrono::seconds(60)), 0);
    expect_sync(MediaFile(Path("film.mkv"), kFlashX, kFlashY), 6, 2);
    expect_sync(MediaFile(Path("film.MP4"), kFlashX, kFlashY), 6, 2);
}

TEST_F(RecordTest, PipesWhatPlayersRead) {
    EXPECT_EQ(Run("pipe " + Server() + " --duration 3 >" + Path("film.nut")), 0);
    expect_sync(MediaFile(Path("film.nut"), kFlashX, kFlashY), 3, 1);
    EXPECT_EQ(Run("pipe " + Server() + " --format raw --video-only --rate 10 --duration 1 >" + Path("film")),
              0);
    const auto pictureBytes = uintmax_t{1280} * 720 * 4;
    EXPECT_EQ(std::filesystem::file_size(Path("film")), 10 * pictureBytes) << "at a constant rate";
    EXPECT_EQ(Run("pipe " + Server() + "; echo $? >&2; } | head -c 100000 >" + Path("start"), "{"), 0);
    EXPECT_EQ(line, "0") << "a reader who leaves is no failure";
}

TEST_F(RecordTest, GoesOnWithTheLastPictureWhenTheServerVanishes) {
    Program recording({GLASSPANE_CLIENT, "record", Server(), "-o", Path("film.mp4"), "--json", "--no-sound"});
    ASSERT_TRUE(Await([&] { return std::filesystem::exists(Path("film.mp4")); }));
    daemon.Process().Signal(SIGKILL);
    EXPECT_THAT(recording.ReadLine(), HasSubstr("the last picture stays"));
    recording.Signal(SIGINT);
    EXPECT_THAT(recording.ReadLine(), HasSubstr("\"end\":\"interrupted\""));
    EXPECT_EQ(recording.WaitForExit(), 0);
    const MediaFile file(Path("film.mp4"), kFlashX, kFlashY);
    ASSERT_FALSE(file.shots.empty());
    EXPECT_TRUE(file.sound.empty());
    EXPECT_GT(file.shots.back().time, 0.2) << "twice it asked again";
}

TEST_F(RecordTest, KeepsWhatWasWrittenBeforeTheDiskWasFull) {
    for (const char* name : {"film.mkv", "film.mp4"}) {
        // The shell counts blocks of 512 bytes.
        EXPECT_EQ(Run("record " + Server() + " --duration 30 -o " + Path(name),
                      "ulimit -f 300; trap '' XFSZ; exec"),
                  1);
        EXPECT_EQ(line, "glasspane-client: " + Path(name) +
                            ": File too large; what was written until then is kept");
        const MediaFile file(Path(name), kFlashX, kFlashY);
        EXPECT_TRUE(file.isReadable);
        EXPECT_GT(file.shots.size(), 5U);
    }
}

TEST_F(RecordTest, TellsInOneLineWhatIsWrong) {
    folder.Write("there.mkv", "kept");
    const struct {
        std::string arguments;
        int status;
        const char* words;
    } cases[] = {
        {"record " + Server() + " -o film.avi", 2, "neither .mkv nor .mp4"},
        {"record " + Server() + " -o " + Path("there.mkv"), 1, "--overwrite"},
        {"record " + Server() + " -o " + Path("none/film.mkv"), 1, "No such file or directory"},
        {"record " + Server() + " --rate nan -o " + Path("film.mkv"), 2, "--rate"},
        {"pipe " + Server() + " --format raw", 2, "--video-only or --audio-only"},
        {"pipe " + Server() + " --format gif", 2, "--format"},
        {"record 127.0.0.1:1 -o " + Path("film.mkv"), 1, "no connection to 127.0.0.1:1"},
    };
    for (const auto& [arguments, status, words] : cases) {
        SCOPED_TRACE(arguments);
        EXPECT_EQ(Run(arguments), status);
        EXPECT_THAT(line, StartsWith("glasspane-client: "));
        EXPECT_THAT(line, HasSubstr(words));
    }
    EXPECT_EQ(folder.Read("there.mkv"), "kept");
    EXPECT_FALSE(std::filesystem::exists(Path("film.mkv"))) << "nothing is left of what failed";
}

} // namespace
