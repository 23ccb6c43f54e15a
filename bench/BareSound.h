#pragma once

#include <chrono>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include <pulse/pulseaudio.h>

/// Finds clicks in samples from -1 to 1 that are quiet otherwise.
class ClickFinder {
  public:
    /// Whether a click begins with the next sample.
    bool Take(float sample) {
        if (sample >= kLoud)
            return std::exchange(fQuiet, 0) > kPause;
        ++fQuiet;
        return false;
    }

  private:
    static constexpr float kLoud = 0.4F;
    static constexpr int kPause = 4000;

    int fQuiet = 0;
};

/// The two ends of a sound server with nothing between them: plays a click a second on a sink, and records
/// the sink's monitor with no more than the library asks for.
class BareSound {
  public:
    using Clock = std::chrono::steady_clock;
    using Times = std::vector<Clock::time_point>;

    /// Ends the program when the sink can't be used.
    explicit BareSound(const std::string& sink);
    ~BareSound();
    BareSound(const BareSound&) = delete;
    BareSound& operator=(const BareSound&) = delete;

    /// When the sink plays each click, as the server tells the player.
    Times Played() const { return copy(fPlayed); }
    /// When the recorder had each.
    Times Recorded() const { return copy(fRecorded); }

  private:
    Times copy(const Times& times) const {
        const std::lock_guard lock(fMutex);
        return times;
    }
    void play(size_t bytes);
    void record();

    pa_threaded_mainloop* fLoop;
    pa_context* fContext = nullptr;
    pa_stream* fPlayer = nullptr;
    pa_stream* fRecorder = nullptr;
    size_t fPlayedFrames = 0;
    bool fIsClick = false;
    ClickFinder fFinder;

    mutable std::mutex fMutex;
    Times fPlayed;
    Times fRecorded;
};
