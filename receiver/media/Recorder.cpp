#include "Recorder.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "Interruption.h"

namespace receiver {

namespace {

using std::chrono::duration_cast;
using std::chrono::microseconds;

/// A picture that is older than this, in microseconds, has a clock that makes no sense.
constexpr int64_t kOldest = Timeline::kLargestJump;

Stream::Settings stream_settings(Stream::Settings settings, const MediaFormat& format) {
    settings.rate = format.rate;
    settings.withSound = format.hasSound;
    return settings;
}

int64_t microseconds_of(Recorder::Clock::duration duration) {
    return duration_cast<microseconds>(duration).count();
}

} // namespace

Recorder::Recorder(Settings settings, const Interruption& interruption)
    : fSettings(std::move(settings)),
      fInterruption(interruption),
      fStream(stream_settings(fSettings.stream, fSettings.format), &interruption),
      fWriter(&interruption) {}

Recorder::End Recorder::Run() {
    while (poll() && wait()) {
    }
    if (!fWriter.IsOpen()) {
        if (fFailure.empty())
            fFailure = why_no_picture();
        return End::kNoPicture;
    }
    finish();
    return end();
}

Recorder::End Recorder::end() {
    fFailure = fWriter.Failure();
    if (fWriter.HasReaderLeft())
        return End::kReaderLeft;
    if (!fFailure.empty())
        return End::kFailed;
    return fInterruption.IsRaised() ? End::kInterrupted : End::kDuration;
}

std::string Recorder::why_no_picture() const {
    if (fInterruption.IsRaised())
        return "interrupted before the first picture; nothing was written";
    if (!fStream.Failure().empty())
        return fStream.Failure();
    return IsPaused() ? "the source is paused; go on with it at the server" : "the server sends no picture";
}

/// False at the end.
bool Recorder::poll() {
    fEvent = fStream.Poll();
    if (fInterruption.IsRaised())
        return false;
    const bool wasAway = std::exchange(fIsAway, fEvent == Stream::Event::kFailed);
    if (wasAway && !fIsAway && fWriter.IsOpen())
        ++fReconnects;
    const bool goesOn = take_reply();
    fEndTime = fTimeline.Now(Clock::now());
    if (fSettings.progress)
        fSettings.progress(*this);
    return goesOn;
}

/// Notes the clocks of a reply and writes what it brought.
bool Recorder::take_reply() {
    const Clock::time_point now = Clock::now();
    if (fEvent == Stream::Event::kFailed || fEvent == Stream::Event::kMuted) {
        fReplyTime = 0;
        return fill(now);
    }
    const bool isNewServer = std::exchange(fRestarts, fStream.Restarts()) != fStream.Restarts();
    if (isNewServer) {
        fSoundClock.Reset();
        fReplyTime = 0;
    }
    const int64_t told = fStream.Last().timestamp;
    const int64_t time = told != 0 ? told : microseconds_of(now.time_since_epoch());
    fReplyBefore = std::exchange(fReplyTime, time);
    fTimeline.Note(time, now, isNewServer);
    if (!fWriter.IsOpen() && !fStream.Picture().IsEmpty() && !start())
        return false;
    return !fWriter.IsOpen() || (take_picture() && take_sound() && fill(now));
}

/// At the first picture.
bool Recorder::start() {
    const Canvas& canvas = fStream.Picture();
    fTimeline.StartAt(capture_time(true));
    return fWriter.Open(fSettings.path, fSettings.overwrite, fSettings.format, canvas.Width(),
                        canvas.Height(), fFailure);
}

Recorder::PointerLook Recorder::pointer_look() const {
    if (!fSettings.hasPointer || !fStream.Pointer())
        return {};
    return {true, fStream.PointerPlace(), fStream.Last().pointer->shape};
}

bool Recorder::take_picture() {
    const uint64_t number = fStream.PictureNumber();
    const bool isNew = std::exchange(fPictureNumber, number) != number;
    const PointerLook pointer = pointer_look();
    if (!isNew && pointer == fPointer)
        return true;
    fPointer = pointer;
    const Canvas& canvas = fStream.Picture();
    if (!fWriter.SetPicture(compose(pointer), canvas.Width(), canvas.Height(), canvas.RowBytes()))
        return false;
    const int64_t time = fTimeline.At(capture_time(isNew));
    if (has_constant_rate() || time > last_time())
        return true; // It is written when it is due, or never.
    return fWriter.WritePicture(time);
}

/// By the server's clock. Without a new picture it is the pointer that moved, since the reply before.
int64_t Recorder::capture_time(bool isNew) const {
    const int64_t time = isNew ? fStream.PictureTime() : fReplyBefore;
    return time > fReplyTime || time < fReplyTime - kOldest ? fReplyTime : time;
}

const uint8_t* Recorder::compose(const PointerLook& pointer) {
    const Canvas& canvas = fStream.Picture();
    const uint8_t* pixels = canvas.Row(0);
    if (!pointer.isShown)
        return pixels;
    fPixels.assign(pixels,
                   pixels + static_cast<size_t>(canvas.RowBytes()) * static_cast<size_t>(canvas.Height()));
    fStream.Pointer()->DrawInto(fPixels.data(), canvas.Width(), canvas.Height(), pointer.place.x,
                                pointer.place.y);
    return fPixels.data();
}

bool Recorder::take_sound() {
    const StreamReply::Sound* sound = fStream.Sound();
    if (!sound) {
        fSoundClock.Reset();
        return true;
    }
    const int64_t end = fTimeline.At(fSoundClock.End(sound->endTime, fReplyTime));
    const auto length = static_cast<int64_t>(sound->FrameCount()) * 1'000'000 / sound->rate;
    return fWriter.WriteSound(sound->samples, sound->channels, sound->rate, end - length);
}

bool Recorder::has_constant_rate() const {
    return fSettings.format.container == MediaFormat::Container::kRaw;
}

/// When the picture has to be written again if it stays.
int64_t Recorder::next_picture_time() const {
    if (has_constant_rate())
        return static_cast<int64_t>(static_cast<double>(fWriter.PictureCount()) * 1e6 /
                                    fSettings.format.rate);
    return fWriter.LastPictureTime() + microseconds_of(fSettings.stillInterval);
}

/// Brings pictures and sound up to now.
bool Recorder::fill(Clock::time_point now) {
    if (!fWriter.IsOpen())
        return true;
    const int64_t time = std::min(fTimeline.Now(now), last_time());
    // A reader who was stuck gets no flood of large pictures.
    const bool makesUp = has_constant_rate() || fSettings.format.IsCompressed();
    if (fSettings.format.hasPictures)
        for (int64_t due = next_picture_time(); due <= time && !fInterruption.IsRaised();
             due = next_picture_time())
            if (!fWriter.WritePicture(makesUp ? due : time))
                return false;
    return fWriter.AdvanceSound(time);
}

/// Until the next poll. False at the end.
bool Recorder::wait() {
    for (Clock::time_point now = Clock::now(); !is_over(now); now = Clock::now()) {
        if (!fill(now))
            return false;
        if (now >= fStream.NextPoll())
            return true;
        if (!fInterruption.WaitUntil(next_deed(now)))
            return false;
    }
    return false;
}

/// When there is something to do: a poll, a picture to be written again, or the end.
Recorder::Clock::time_point Recorder::next_deed(Clock::time_point now) const {
    Clock::time_point next = fStream.NextPoll();
    if (!fWriter.IsOpen())
        return std::min(next, fBegin + fSettings.patience);
    const int64_t time = fTimeline.Now(now);
    if (fSettings.format.hasPictures)
        next = std::min(next, now + microseconds(next_picture_time() - time));
    if (fSettings.seconds > 0)
        next = std::min(next, now + microseconds(duration() - time));
    return next;
}

int64_t Recorder::duration() const {
    return static_cast<int64_t>(fSettings.seconds * 1e6);
}

/// That anything may have.
int64_t Recorder::last_time() const {
    return fSettings.seconds > 0 ? duration() - 1 : std::numeric_limits<int64_t>::max();
}

bool Recorder::is_over(Clock::time_point now) const {
    if (!fWriter.IsOpen())
        return now >= fBegin + fSettings.patience;
    return fSettings.seconds > 0 && fTimeline.Now(now) >= duration();
}

/// The last picture lasts to the end.
void Recorder::finish() {
    const Clock::time_point now = Clock::now();
    fEndTime = fTimeline.Now(now);
    if (fSettings.seconds > 0)
        fEndTime = std::min(fEndTime, duration());
    if (fWriter.Failure().empty() && fill(now)) {
        const int64_t last = fEndTime - static_cast<int64_t>(1e6 / fSettings.format.rate);
        if (fSettings.format.hasPictures && !has_constant_rate() && fWriter.LastPictureTime() < last)
            fWriter.WritePicture(last);
    }
    fWriter.Close();
}

} // namespace receiver
