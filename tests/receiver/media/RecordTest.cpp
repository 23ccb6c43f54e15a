// The commands record and pipe, with a real server whose card flashes when its tone clicks.

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <optional>

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
constexpr double kSmooth = 0.07; ///< Pictures that don't stay longer, in seconds.

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

/// The longest that a picture stayed around a time.
double longest_gap(const MediaFile& file, double time) {
    double longest = 0;
    for (size_t i = 1; i < file.shots.size(); ++i)
        if (std::abs(file.shots[i].time - time) < 0.2)
            longest = std::max(longest, file.shots[i].time - file.shots[i - 1].time);
    return longest;
}

/// How far a click is from the time in which a flash began: between a dark picture and the next one, which is
/// lit. Nothing where none did within half a second.
std::optional<double> distance_to_flash(const MediaFile& file, double click) {
    const auto& shots = file.shots;
    for (size_t i = 1; i < shots.size(); ++i)
        if (shots[i].centre > kLit && shots[i - 1].centre < kLit && std::abs(shots[i].time - click) < 0.5)
            return std::max({shots[i - 1].time - click, click - shots[i].time, 0.0});
    return std::nullopt;
}

/// Judged where pictures come smoothly: a machine that is too busy for them shows flashes late or not at all.
void expect_flashes_with_clicks(const MediaFile& file) {
    const std::vector<double> clicks = file.Clicks();
    EXPECT_FALSE(clicks.empty());
    size_t judged = 0;
    std::vector<double> distances;
    for (const double click : clicks) {
        if (longest_gap(file, click) > kSmooth)
            continue;
        ++judged;
        if (const auto distance = distance_to_flash(file, click))
            distances.push_back(*distance);
    }
    if (judged < 2)
        return;
    ASSERT_FALSE(distances.empty());
    std::sort(distances.begin(), distances.end());
    EXPECT_LT(distances[distances.size() / 2], 2 * kFrame);
}

void expect_sync(const MediaFile& file, double seconds) {
    ASSERT_TRUE(file.isReadable);
    EXPECT_EQ(file.width, 1280);
    EXPECT_EQ(file.height, 720);
    ASSERT_FALSE(file.shots.empty());
    EXPECT_TRUE(file.IsGrowing());
    EXPECT_TRUE(file.isContinuous);
    EXPECT_NEAR(file.shots.back().time - file.shots.front().time, seconds, 1);
    EXPECT_NEAR(file.SoundEnd() - file.shots.front().time, seconds, 1);
    expect_flashes_with_clicks(file);
}

TEST_F(RecordTest, KeepsPictureAndSoundInSync) {
    for (const char* name : {"film.mkv", "film.MP4"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(Run("record " + Server() + " --duration 4 --json -o " + Path(name)), 0);
        EXPECT_THAT(line, StartsWith("{\"file\":\"" + Path(name)));
        EXPECT_THAT(line, HasSubstr("\"end\":\"duration\""));
        expect_sync(MediaFile(Path(name), kFlashX, kFlashY), 4);
    }
}

TEST_F(RecordTest, PipesWhatPlayersRead) {
    EXPECT_EQ(Run("pipe " + Server() + " --rate 30 --duration 4 >" + Path("film.nut")), 0);
    expect_sync(MediaFile(Path("film.nut"), kFlashX, kFlashY), 4);
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
