// Sound that a real server plays, as it comes out of the stream.

#include <chrono>
#include <cmath>
#include <memory>

#include "ScreenFixture.h"
#include "SoundServer.h"
#include "StreamClient.h"
#include "ToneMeter.h"

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr int kRate = 44100;
constexpr auto kLimit = 60s;

class StreamedSound : public ScreenFixture {
  protected:
    void Start() {
        if (!sound.Start())
            SKIP_OR_FAIL(sound.WhyNot());
        StartScreen("320x200x24");
        if (!painter)
            return;
        ASSERT_NO_FATAL_FAILURE(StartDaemon());
        client = std::make_unique<StreamClient>(daemon->Port(), true);
    }

    /// One poll at a receiver's pace. It must not take long, whatever the sound does.
    void Poll() {
        const auto before = Clock::now();
        ASSERT_TRUE(client->Poll());
        held += Clock::now() - before > 900ms;
        std::this_thread::sleep_for(16ms);
    }

    /// The next samples; fewer when they don't come in time.
    std::vector<int16_t> Listen(double seconds) {
        const size_t start = client->Sound().size();
        const auto wanted = start + 2 * static_cast<size_t>(seconds * kRate);
        for (const auto end = Clock::now() + kLimit; client->Sound().size() < wanted && Clock::now() < end;) {
            Poll();
            if (HasFatalFailure())
                return {};
        }
        return {client->Sound().begin() + static_cast<ptrdiff_t>(start), client->Sound().end()};
    }

    static double Level(const std::vector<int16_t>& samples, size_t channel, double hertz) {
        return ToneMeter(samples, 2, channel, kRate, 32768).Level(hertz);
    }
    bool AwaitTone() {
        for (const auto end = Clock::now() + kLimit; Clock::now() < end && !HasFatalFailure();) {
            if (Level(Listen(0.1), 0, 1000) > 0.3)
                return true;
        }
        return false;
    }

    SoundServer sound;
    std::unique_ptr<StreamClient> client;
    int held = 0; ///< Polls that took as long as a look at a server that hangs, which is a second.
};

TEST_F(StreamedSound, AToneComesOutAsItWentInByWhateverSinkAndServer) {
    START(Start());
    const struct {
        const char* sink; ///< Becomes the default one.
        int rate, channels;
        bool isKilled; ///< The server, after it.
    } steps[] = {{"stereo", 48000, 2, false}, {"surround", 44100, 6, true}, {"next", 48000, 2, false}};
    for (const auto& step : steps) {
        SCOPED_TRACE(step.sink);
        ASSERT_TRUE(sound.AddSink(step.sink, step.rate, step.channels));
        const auto player = sound.PlayTone(step.sink); // 1000 Hz on the left, 500 on the right.
        ASSERT_TRUE(player) << "is sox installed?";
        ASSERT_TRUE(AwaitTone());
        Listen(0.2); // The player's own start.
        const std::vector<int16_t> samples = Listen(1);
        ASSERT_EQ(samples.size() % 2, 0U);
        EXPECT_LT(ToneMeter(samples, 2, 0, kRate, 32768).WorstBreak(1000), 0.02) << "no gap";
        if (step.channels == 2) {
            EXPECT_NEAR(Level(samples, 0, 1000), 0.5, 0.02);
            EXPECT_LT(Level(samples, 0, 500), 0.02);
            EXPECT_NEAR(Level(samples, 1, 500), 0.5, 0.02);
            EXPECT_LT(Level(samples, 1, 1000), 0.02);
        }
        if (step.isKilled) {
            sound.Kill();
            for (int i = 0; i < 30; ++i)
                ASSERT_NO_FATAL_FAILURE(Poll());
            ASSERT_TRUE(sound.Start()) << sound.WhyNot();
        }
    }
    EXPECT_LE(held, 1) << "the pictures go on meanwhile";
}

TEST_F(StreamedSound, AServerThatHangsHoldsUpNobody) {
    START(Start());
    ASSERT_TRUE(sound.AddSink("played", 48000, 2));
    sound.Freeze(true);
    for (int i = 0; i < 150; ++i)
        ASSERT_NO_FATAL_FAILURE(Poll());
    EXPECT_LE(held, 1) << "for another reason: the machine was busy";
    EXPECT_TRUE(client->Sound().empty());
    sound.Freeze(false);
    ASSERT_NO_FATAL_FAILURE(Poll());
}

} // namespace
