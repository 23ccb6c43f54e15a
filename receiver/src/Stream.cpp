#include "Stream.h"

#include <algorithm>
#include <utility>

namespace receiver {

namespace {

using namespace std::chrono_literals;

constexpr Stream::Clock::duration kFirstPause = 250ms; ///< After one failure; then twice as long each time.
constexpr Stream::Clock::duration kLongestPause = 5s;
constexpr int kDoublings = 5;
constexpr double kLongestInterval = 3600; ///< Seconds, at any pace.
/// States of the picture that the server keeps: who is further behind may have missed some.
constexpr uint32_t kKeptStates = 10;
/// A pointer that is slow to come must not hold up the picture for long.
constexpr Connection::Limits kShapeLimits{.seconds = 1, .bytes = 8u * 1024 * 1024};

double milliseconds_since(Stream::Clock::time_point time) {
    return std::chrono::duration<double, std::milli>(Stream::Clock::now() - time).count();
}

} // namespace

Stream::Stream(Settings settings, const Interruption* interruption)
    : fSettings(std::move(settings)),
      fConnection(fSettings.server, interruption, fSettings.limits),
      fWantsSound(fSettings.withSound) {}

Stream::Event Stream::Poll() {
    const Clock::time_point begin = Clock::now();
    std::string reason;
    Event event = Event::kFailed;
    if (fetch(reason)) {
        fFigures.delay.Add(milliseconds_since(begin));
        event = take(reason);
    }
    if (event == Event::kFailed)
        event = fail(reason);
    else {
        ++fFigures.polls;
        fFailure.clear();
        fFailureCount = 0;
    }
    schedule();
    return event;
}

zRecord Stream::request() const {
    zRecord members;
    members.SetUInt32("sequence_id", fSequence);
    members.SetCString("quality", fSettings.quality.c_str());
    return members;
}

bool Stream::fetch(std::string& reason) {
    const char* method = fWantsSound ? "SnapshotByDiffsWithAudio" : "SnapshotByDiffs";
    const uint64_t before = fConnection.BytesReceived();
    const bool hasReply = fConnection.Call(method, request(), fReply, reason);
    fFigures.bytes += fConnection.BytesReceived() - before;
    return hasReply && fLast.Read(fReply, reason);
}

/// Uses the reply.
Stream::Event Stream::take(std::string& reason) {
    if (fLast.isMuted || fLast.isScreenSaverActive) {
        ++fFigures.mutedPolls;
        fPreviousTimestamp = 0;
        fPointer.reset();
        return Event::kMuted;
    }
    const bool isContinued = !note_instance() && fPreviousTimestamp != 0;
    note_clocks(isContinued);
    const Event event = take_pictures(isContinued, reason);
    take_pointer();
    fPreviousTimestamp = fLast.timestamp;
    return event;
}

void Stream::take_pointer() {
    fPointer.reset();
    if (!fLast.pointer)
        return;
    const uint64_t before = fConnection.BytesReceived();
    fConnection.SetLimits(kShapeLimits);
    fPointer = fShapes.Get(fConnection, fLast.instance, fLast.pointer->shape);
    fConnection.SetLimits(fSettings.limits);
    fFigures.bytes += fConnection.BytesReceived() - before;
}

Stream::Event Stream::take_pictures(bool isContinued, std::string& reason) {
    note_move();
    const bool isBehind = fLast.nextSequence - fSequence > kKeptStates + 1;
    if (!fLast.IsWholeFrame() &&
        (fCanvas.IsEmpty() || fSequence == 0 || (isBehind && !fLast.pictures.empty()))) {
        fSequence = 0; // Changes of something that isn't here.
        return Event::kIdle;
    }
    fSequence = fLast.nextSequence;
    // A frame that has grown to hold a change is followed by a whole one.
    if (fLast.pictures.empty() || !(fLast.IsWholeFrame() || fCanvas.HasSizeOf(fLast.frame)))
        return Event::kIdle;
    const Clock::time_point begin = Clock::now();
    if (!fCanvas.Draw(fLast, reason))
        return Event::kFailed;
    fFigures.composing.Add(milliseconds_since(begin));
    count_pictures(isContinued);
    return Event::kPicture;
}

/// A picture as large as the canvas that lies elsewhere is the frame at its new place, as that of a window
/// that moves. The reply tells a frame that holds both places.
void Stream::note_move() {
    if (fLast.pictures.size() == 1 && fCanvas.HasSizeOf(fLast.pictures[0].place))
        fLast.frame = fLast.pictures[0].place;
}

void Stream::count_pictures(bool isContinued) {
    ++fPictureNumber;
    fPictureTime = std::max(fPictureTime, isContinued ? fPreviousTimestamp : fLast.timestamp);
    if (fLast.IsWholeFrame()) {
        ++fFigures.wholeFrames;
    } else {
        ++fFigures.changes;
        fFigures.regions += fLast.pictures.size();
    }
}

Stream::Event Stream::fail(const std::string& reason) {
    ++fFigures.failures;
    ++fFailureCount;
    fFailure = reason;
    fSequence = 0;
    fPreviousTimestamp = 0;
    fPointer.reset();
    return Event::kFailed;
}

/// True for another run of the server than before: its numbers and clocks begin anew.
bool Stream::note_instance() {
    if (fLast.instance == fInstance)
        return false;
    if (fInstance != 0)
        ++fRestarts;
    fInstance = fLast.instance;
    fSequence = 0;
    fPictureTime = 0;
    fMachineDrift = {};
    fSoundDrift = {};
    return true;
}

void Stream::note_clocks(bool isContinued) {
    const auto now = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now().time_since_epoch());
    fMachineDrift.Add(fLast.timestamp, now.count());
    if (!fLast.sound)
        return;
    fFigures.soundFrames += fLast.sound->FrameCount();
    if (isContinued)
        fSoundDrift.Add(fLast.sound->endTime, fLast.timestamp);
}

void Stream::schedule() {
    const Clock::time_point now = Clock::now();
    if (fFailureCount > 0) {
        fNextPoll =
            now + std::min(kFirstPause * (1 << std::min(fFailureCount - 1, kDoublings)), kLongestPause);
        return;
    }
    const std::chrono::duration<double> interval(
        fSettings.rate > 0 ? std::min(1 / fSettings.rate, kLongestInterval) : 0);
    const auto pause = std::chrono::duration_cast<Clock::duration>(interval);
    // In the beat as long as it is kept; a beat that was missed is not made up for.
    fNextPoll = std::clamp(fNextPoll + pause, now, now + pause);
}

const StreamReply::Sound* Stream::Sound() const {
    return fFailureCount == 0 && fLast.sound ? &*fLast.sound : nullptr;
}

zPoint Stream::PointerPlace() const {
    if (!fLast.pointer)
        return {};
    return {zRect::Subtract(fLast.pointer->corner.x, fCanvas.Frame().left),
            zRect::Subtract(fLast.pointer->corner.y, fCanvas.Frame().top)};
}

Figures Stream::TakeFigures() {
    return std::exchange(fFigures, Figures());
}

} // namespace receiver
