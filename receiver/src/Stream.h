#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "Canvas.h"
#include "Connection.h"
#include "Figures.h"
#include "PointerShapes.h"
#include "StreamReply.h"

namespace receiver {

class Interruption;

/// Follows a source: polls at its own pace, keeps the picture, the pointer and the sound of the last reply,
/// and comes back by itself after a failure. One thread.
///
/// Poll, use what it brought, wait until NextPoll, and so on.
class Stream {
  public:
    using Clock = std::chrono::steady_clock;

    struct Settings {
        Address server;
        std::string quality = "normal"; ///< Or "low" or "high".
        bool withSound = false;
        double rate = 60; ///< Polls a second; 0 for as fast as replies come.
        Connection::Limits limits{};
    };

    enum class Event {
        kPicture, ///< The picture has changed.
        kIdle,    ///< It has not.
        kMuted,   ///< The source is paused; the last picture stays.
        kFailed,  ///< No useful reply; Failure says why. The last picture stays.
    };

    /// \p interruption, which may be null and outlives the stream, breaks off a poll.
    Stream(Settings settings, const Interruption* interruption);

    /// Makes one call, which may take as long as the limits allow.
    Event Poll();

    /// Whether the next polls ask for the sound, too. Sound that one client takes no other gets: who has no
    /// use for it now should leave it.
    void SetSound(bool wanted) { fWantsSound = wanted; }

    /// When to poll again: at the pace, or later after failures in a row.
    Clock::time_point NextPoll() const { return fNextPoll; }

    /// The source as it looks now; empty before the first picture.
    const Canvas& Picture() const { return fCanvas; }
    /// Counts up with each change of the picture.
    uint64_t PictureNumber() const { return fPictureNumber; }
    /// When the picture was captured, by the server's clock in microseconds: a reply shows the screen as it
    /// was when the reply before left. Never goes back while the server runs.
    int64_t PictureTime() const { return fPictureTime; }

    /// The last useful reply. Its pictures and sound are valid until the next poll, and only after a poll
    /// that didn't fail.
    const StreamReply& Last() const { return fLast; }
    /// The sound that the last poll brought; null for none.
    const StreamReply::Sound* Sound() const;

    /// The pointer's shape, null while none shows, and where its left top corner lies on the canvas.
    const std::shared_ptr<const PointerShape>& Pointer() const { return fPointer; }
    zPoint PointerPlace() const;

    /// Why the last poll failed; empty if it didn't.
    const std::string& Failure() const { return fFailure; }
    /// Failed polls in a row.
    int FailureCount() const { return fFailureCount; }
    /// Counts up when another run of the server answers: its clocks begin anew.
    int Restarts() const { return fRestarts; }

    /// Since the start, or since they were taken.
    const Figures& Measured() const { return fFigures; }
    /// Hands them out and begins anew.
    Figures TakeFigures();
    /// The server's clock against this machine's, and its sound's clock against its own, in parts per
    /// million.
    double ClockDriftPpm() const { return fMachineDrift.PartsPerMillion(); }
    double SoundDriftPpm() const { return fSoundDrift.PartsPerMillion(); }

    const Settings& Chosen() const { return fSettings; }

  private:
    zRecord request() const;
    bool fetch(std::string& reason);
    Event take(std::string& reason);
    Event take_pictures(bool isContinued, std::string& reason);
    Event fail(const std::string& reason);
    bool note_instance();
    void note_clocks(bool isContinued);
    void take_pointer();
    void note_move();
    void count_pictures(bool isContinued);
    void schedule();

    const Settings fSettings;
    Connection fConnection;
    Reply fReply;
    StreamReply fLast;
    Canvas fCanvas;
    PointerShapes fShapes;
    std::shared_ptr<const PointerShape> fPointer;
    bool fWantsSound;
    uint32_t fSequence = 0; ///< What to send next.
    uint64_t fPictureNumber = 0;
    int64_t fPictureTime = 0;
    int64_t fPreviousTimestamp = 0; ///< Of the useful reply before; 0 for none.
    uint32_t fInstance = 0;
    std::string fFailure;
    int fFailureCount = 0;
    int fRestarts = 0;
    Clock::time_point fNextPoll = Clock::now();
    Figures fFigures;
    ClockDrift fMachineDrift;
    ClockDrift fSoundDrift;
};

} // namespace receiver
