#pragma once

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "SoundRing.h"
#include "Stream.h"
#include "View.h"

namespace receiver {

/// How a server and its source are doing.
struct RelayStatus {
    uint64_t number = 0; ///< Counts up with each change.
    bool isConnected = false;
    bool isMuted = false;
    std::string failure; ///< Why it isn't connected; empty before the first attempt has failed.
    int width = 0;       ///< Of the picture; 0 before the first.
    int height = 0;

    // In the last second.
    double pollsPerSecond = 0;
    double picturesPerSecond = 0;
    double bytesPerSecond = 0;
    bool hasSound = false;
    Histogram delay; ///< As in Figures.
    Histogram composing;

    // Since the start.
    uint64_t failures = 0;
    int restarts = 0;
    double clockDriftPpm = 0;
    double soundDriftPpm = 0;
};

/// Follows one source for any number of viewers. Its thread owns the stream; the viewers' threads wait here
/// for what is new, and take the newest: nothing queues up for them. Without viewers it polls seldom, and
/// without listeners it leaves the sound to other clients of the server.
class Relay {
  public:
    using Clock = std::chrono::steady_clock;

    /// \p interruption, which outlives this, ends it.
    Relay(const Stream::Settings& settings, const Interruption& interruption);
    ~Relay() { Stop(); }
    Relay(const Relay&) = delete;
    Relay& operator=(const Relay&) = delete;

    /// Ends the thread, if \p interruption is raised at once, and all waiting.
    void Stop();
    bool IsStopped() const;

    /// The newest view, as soon as it is another one than \p number, for that need. Null when the bound has
    /// passed or this was stopped.
    std::shared_ptr<const View> WaitForView(View::Need need, uint64_t number, Clock::duration bound);
    /// Waits until the stream shows the present: a reply shows the screen as it was one poll ago. False when
    /// the bound has passed or this was stopped.
    bool WaitForPresent(Clock::duration bound);

    /// The status and the pointer, without a picture.
    struct Report {
        RelayStatus status;
        View::Pointer pointer;
        uint64_t pictureNumber = 0;
        uint64_t number = 0; ///< Counts up with changes of status and pointer.
    };
    Report GetReport() const;
    /// The same, as soon as it is another one than \p number, or the bound has passed.
    Report WaitForReport(uint64_t number, Clock::duration bound);

    /// A pointer's shape by the view's id; null for one that has been forgotten.
    std::shared_ptr<const PointerShape> Shape(uint64_t id) const;

    /// Where the newest sound ends.
    uint64_t SoundEnd() const;
    /// Waits for sound behind that place, hands it out and moves the place behind it. False without any.
    bool WaitForSound(uint64_t& place, std::vector<uint8_t>& out, Clock::duration bound);

    const Stream::Settings& Chosen() const { return fStream.Chosen(); }

  private:
    void run();
    bool is_sound_wanted() const;
    void rest();
    Clock::time_point next_poll() const;
    bool wants_more() const;
    void publish(bool isNewPicture);
    std::shared_ptr<const View::Picture> copy_picture(bool isNew, bool isWanted, bool arePixelsWanted) const;
    View::Pointer pointer();
    void keep(uint64_t id, const std::shared_ptr<const PointerShape>& shape);
    void note(Stream::Event event);
    void note_status(Stream::Event event);
    void take_figures();
    void note_demand();

    const Interruption& fInterruption;
    Stream fStream; ///< The thread's own, as the next few.
    Clock::time_point fLastPoll;

    mutable std::mutex fMutex;       ///< For all that follows.
    std::condition_variable fNews;   ///< For viewers.
    std::condition_variable fDemand; ///< For the thread.
    bool fIsStopped = false;
    Clock::time_point fLastDemand;
    Clock::time_point fLastSoundDemand;
    std::array<int, View::kNeeds> fWaiting{}; ///< Viewers, for each need.
    std::shared_ptr<const View> fView = std::make_shared<View>();
    std::map<uint64_t, std::shared_ptr<const PointerShape>> fShapes;
    size_t fShapeBytes = 0;
    RelayStatus fStatus;
    uint64_t fReportNumber = 1;
    uint64_t fPolls = 0;
    SoundRing fSound;

    std::thread fThread; ///< The last, since it uses all of them.
};

} // namespace receiver
