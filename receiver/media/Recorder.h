#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "MediaFormat.h"
#include "MediaWriter.h"
#include "SoundClock.h"
#include "Stream.h"
#include "Timeline.h"

namespace receiver {

class Interruption;

/// Follows a source and writes what it shows and plays, until it is told to stop. While the source is paused
/// or the server is away, the last picture stays. One thread.
class Recorder {
  public:
    using Clock = std::chrono::steady_clock;

    struct Settings {
        Stream::Settings stream; ///< Its rate is that of the format, and has sound if that has.
        MediaFormat format;
        std::string path; ///< "-" for standard output.
        bool overwrite = false;
        bool hasPointer = true;
        double seconds = 0;                            ///< 0 for no end.
        std::chrono::milliseconds stillInterval{1000}; ///< After which a picture that stays is written again.
        std::chrono::milliseconds patience{10'000};    ///< For the first picture.
        std::function<void(const Recorder&)> progress; ///< Called after each poll; may be empty.
    };

    enum class End {
        kInterrupted,
        kDuration,   ///< It has lasted as long as it was to.
        kReaderLeft, ///< Nobody reads standard output any more.
        kFailed,     ///< Failure says why. What was written until then is there.
        kNoPicture,  ///< Nothing was written; Failure says why.
    };

    Recorder(Settings settings, const Interruption& interruption);

    /// Records to the end.
    End Run();

    const std::string& Failure() const { return fFailure; }
    const Stream& Source() const { return fStream; }
    const MediaWriter& Writer() const { return fWriter; }
    bool IsPaused() const { return fEvent == Stream::Event::kMuted; }
    /// How often the source came back after it was away.
    int Reconnects() const { return fReconnects; }
    double Seconds() const { return static_cast<double>(fEndTime) / 1e6; }

  private:
    /// What of the pointer changes the picture.
    struct PointerLook {
        bool isShown = false;
        zPoint place;
        uint32_t shape = 0;
        bool operator==(const PointerLook& other) const {
            return isShown == other.isShown && shape == other.shape && place.x == other.place.x &&
                   place.y == other.place.y;
        }
    };

    bool poll();
    bool take_reply();
    bool start();
    bool take_picture();
    bool take_sound();
    bool fill(Clock::time_point now);
    bool wait();
    void finish();
    End end();
    int64_t capture_time(bool isNew) const;
    PointerLook pointer_look() const;
    const uint8_t* compose(const PointerLook& pointer);
    bool has_constant_rate() const;
    int64_t next_picture_time() const;
    Clock::time_point next_deed(Clock::time_point now) const;
    int64_t duration() const;
    int64_t last_time() const;
    bool is_over(Clock::time_point now) const;
    std::string why_no_picture() const;

    const Settings fSettings;
    const Interruption& fInterruption;
    const Clock::time_point fBegin = Clock::now();
    Stream fStream;
    MediaWriter fWriter;
    Timeline fTimeline;
    SoundClock fSoundClock;
    Stream::Event fEvent = Stream::Event::kIdle;
    bool fIsAway = false;
    int fReconnects = 0;
    int fRestarts = 0;
    int64_t fReplyTime = 0;       ///< The server's, of the last reply; 0 if it told none,
    int64_t fReplyBefore = 0;     ///< and of the one before.
    uint64_t fPictureNumber = 0;  ///< That was written last.
    PointerLook fPointer;         ///< In it.
    std::vector<uint8_t> fPixels; ///< The canvas with the pointer.
    int64_t fEndTime = 0;         ///< The recording's time now.
    std::string fFailure;
};

} // namespace receiver
