#include "Relay.h"

#include <algorithm>

#include "Interruption.h"

namespace receiver {

namespace {

using namespace std::chrono_literals;

/// How long a viewer counts as one after it last waited for something.
constexpr Relay::Clock::duration kAttention = 3s;
/// Between polls without viewers: enough to notice a server that goes or comes.
constexpr Relay::Clock::duration kIdlePause = 500ms;
/// One poll may be on its way; the reply to the next shows the screen as it was then, so one more.
constexpr uint64_t kPollsToPresent = 3;
constexpr double kFiguresSeconds = 1;

} // namespace

Relay::Relay(const Stream::Settings& settings, const Interruption& interruption)
    : fInterruption(interruption),
      fStream(settings, &interruption),
      fLastDemand(Clock::now()),
      fLastSoundDemand(fLastDemand - kAttention),
      fThread([this] { run(); }) {}

void Relay::Stop() {
    {
        std::lock_guard lock(fMutex);
        fIsStopped = true;
    }
    fNews.notify_all();
    fDemand.notify_all();
    if (fThread.joinable())
        fThread.join();
}

bool Relay::IsStopped() const {
    std::lock_guard lock(fMutex);
    return fIsStopped;
}

// ---- the thread ----

void Relay::run() {
    while (!IsStopped() && !fInterruption.IsRaised()) {
        fStream.SetSound(is_sound_wanted());
        const Stream::Event event = fStream.Poll();
        fLastPoll = Clock::now();
        note(event);
        rest();
    }
}

bool Relay::is_sound_wanted() const {
    std::lock_guard lock(fMutex);
    return fStream.Chosen().withSound && Clock::now() - fLastSoundDemand < kAttention;
}

/// Until the next poll.
void Relay::rest() {
    std::unique_lock lock(fMutex);
    while (!fIsStopped && !fInterruption.IsRaised()) {
        if (wants_more()) {
            lock.unlock();
            publish(false);
            fNews.notify_all();
            lock.lock();
            continue;
        }
        const Clock::time_point due = next_poll();
        if (Clock::now() >= due)
            return;
        fDemand.wait_until(lock, due);
    }
}

Relay::Clock::time_point Relay::next_poll() const {
    const bool isWatched = Clock::now() - fLastDemand < kAttention;
    return isWatched ? fStream.NextPoll() : std::max(fStream.NextPoll(), fLastPoll + kIdlePause);
}

/// True if somebody waits for a picture that is here but has not been copied.
bool Relay::wants_more() const {
    if (!fStatus.isConnected || fView->picture->number == 0)
        return false;
    for (size_t need = 0; need < View::kNeeds; ++need)
        if (fWaiting[need] > 0 && !fView->Has(static_cast<View::Need>(need)))
            return true;
    return false;
}

void Relay::publish(bool isNewPicture) {
    bool isLacking, isWanted, arePixelsWanted;
    {
        std::lock_guard lock(fMutex);
        isLacking = wants_more();
        arePixelsWanted = fWaiting[static_cast<size_t>(View::Need::kPixels)] +
                              fWaiting[static_cast<size_t>(View::Need::kPixelsWithPointer)] >
                          0;
        isWanted = arePixelsWanted || fWaiting[static_cast<size_t>(View::Need::kPicture)] > 0;
    }
    auto view = std::make_shared<View>(*fView); // Only this thread changes which one it is.
    if (isNewPicture || isLacking)
        view->picture = copy_picture(isNewPicture, isWanted, arePixelsWanted);
    view->pointer = pointer();
    const bool hasPointerChanged = view->pointer != fView->pointer;
    view->number += isNewPicture || hasPointerChanged;

    std::lock_guard lock(fMutex);
    fView = std::move(view);
    fReportNumber += hasPointerChanged;
}

/// The stream's picture as it is now: with pixels if somebody waits for them, or for any picture when this is
/// no whole frame.
std::shared_ptr<const View::Picture> Relay::copy_picture(bool isNew, bool isWanted,
                                                         bool arePixelsWanted) const {
    const Canvas& canvas = fStream.Picture();
    auto picture = std::make_shared<View::Picture>();
    picture->number = fStream.PictureNumber();
    picture->width = canvas.Width();
    picture->height = canvas.Height();
    picture->time = isNew ? std::chrono::system_clock::now() : fView->picture->time;
    if (!isNew) {
        picture->jpeg = fView->picture->jpeg;
    } else if (const StreamReply& reply = fStream.Last(); reply.IsWholeFrame()) {
        const auto jpeg = reply.pictures[0].jpeg;
        picture->jpeg = std::make_shared<std::vector<uint8_t>>(jpeg.begin(), jpeg.end());
    }
    if (arePixelsWanted || (isWanted && !picture->jpeg)) {
        const auto size = static_cast<size_t>(canvas.RowBytes()) * static_cast<size_t>(canvas.Height());
        picture->pixels.assign(canvas.Row(0), canvas.Row(0) + size);
    }
    return picture;
}

View::Pointer Relay::pointer() {
    const auto& shape = fStream.Pointer();
    if (!shape)
        return {};
    const StreamReply& reply = fStream.Last();
    const uint64_t id = uint64_t{reply.instance} << 32 | reply.pointer->shape;
    keep(id, shape);
    return {fStream.PointerPlace(), id, shape};
}

/// For the viewers that ask for it by its id.
void Relay::keep(uint64_t id, const std::shared_ptr<const PointerShape>& shape) {
    std::lock_guard lock(fMutex);
    if (fShapes.size() >= PointerShapes::kMaxCount || fShapeBytes > PointerShapes::kMaxBytes) {
        fShapes.clear();
        fShapeBytes = 0;
    }
    if (fShapes.emplace(id, shape).second)
        fShapeBytes += shape->pixels.size();
}

/// Tells the viewers what a poll has brought.
void Relay::note(Stream::Event event) {
    const bool isUseful = event == Stream::Event::kPicture || event == Stream::Event::kIdle;
    publish(event == Stream::Event::kPicture);
    {
        std::lock_guard lock(fMutex);
        note_status(event);
        const StreamReply::Sound* sound = isUseful ? fStream.Sound() : nullptr;
        if (sound && sound->channels == SoundRing::kChannels && sound->rate == SoundRing::kRate)
            fSound.Append(sound->samples);
        fPolls += event != Stream::Event::kFailed;
        if (fStream.Measured().Seconds() >= kFiguresSeconds)
            take_figures();
    }
    fNews.notify_all();
}

/// Needs the lock.
void Relay::note_status(Stream::Event event) {
    const bool isConnected = event != Stream::Event::kFailed;
    const bool isMuted = event == Stream::Event::kMuted;
    const View::Picture& picture = *fView->picture;
    if (isConnected == fStatus.isConnected && isMuted == fStatus.isMuted &&
        fStream.Failure() == fStatus.failure && picture.width == fStatus.width &&
        picture.height == fStatus.height)
        return;
    fStatus.isConnected = isConnected;
    fStatus.isMuted = isMuted;
    fStatus.failure = fStream.Failure();
    fStatus.width = picture.width;
    fStatus.height = picture.height;
    ++fStatus.number;
    ++fReportNumber;
}

/// Needs the lock.
void Relay::take_figures() {
    const double seconds = fStream.Measured().Seconds();
    const Figures figures = fStream.TakeFigures();
    fStatus.pollsPerSecond = static_cast<double>(figures.polls) / seconds;
    fStatus.picturesPerSecond = static_cast<double>(figures.wholeFrames + figures.changes) / seconds;
    fStatus.bytesPerSecond = static_cast<double>(figures.bytes) / seconds;
    fStatus.hasSound = figures.soundFrames > 0;
    fStatus.delay = figures.delay;
    fStatus.composing = figures.composing;
    fStatus.failures += figures.failures;
    fStatus.restarts = fStream.Restarts();
    fStatus.clockDriftPpm = fStream.ClockDriftPpm();
    fStatus.soundDriftPpm = fStream.SoundDriftPpm();
    ++fStatus.number;
    ++fReportNumber;
}

// ---- the viewers' threads ----

/// Needs the lock.
void Relay::note_demand() {
    const Clock::time_point now = Clock::now();
    const bool wasIdle = now - fLastDemand >= kAttention;
    fLastDemand = now;
    if (wasIdle || wants_more())
        fDemand.notify_one();
}

std::shared_ptr<const View> Relay::WaitForView(View::Need need, uint64_t number, Clock::duration bound) {
    std::unique_lock lock(fMutex);
    int& waiting = fWaiting[static_cast<size_t>(need)];
    ++waiting;
    note_demand();
    fNews.wait_for(lock, bound,
                   [&] { return fIsStopped || (fView->Has(need) && fView->NumberFor(need) != number); });
    --waiting;
    const bool isThere = !fIsStopped && fView->Has(need) && fView->NumberFor(need) != number;
    return isThere ? fView : nullptr;
}

bool Relay::WaitForPresent(Clock::duration bound) {
    std::unique_lock lock(fMutex);
    note_demand();
    const uint64_t enough = fPolls + kPollsToPresent;
    fNews.wait_for(lock, bound, [&] { return fIsStopped || fPolls >= enough; });
    return !fIsStopped && fPolls >= enough;
}

Relay::Report Relay::GetReport() const {
    std::lock_guard lock(fMutex);
    return {fStatus, fView->pointer, fView->picture->number, fReportNumber};
}

Relay::Report Relay::WaitForReport(uint64_t number, Clock::duration bound) {
    {
        std::unique_lock lock(fMutex);
        note_demand();
        fNews.wait_for(lock, bound, [&] { return fIsStopped || fReportNumber != number; });
    }
    return GetReport();
}

std::shared_ptr<const PointerShape> Relay::Shape(uint64_t id) const {
    std::lock_guard lock(fMutex);
    const auto found = fShapes.find(id);
    return found == fShapes.end() ? nullptr : found->second;
}

uint64_t Relay::SoundEnd() const {
    std::lock_guard lock(fMutex);
    return fSound.End();
}

bool Relay::WaitForSound(uint64_t& place, std::vector<uint8_t>& out, Clock::duration bound) {
    std::unique_lock lock(fMutex);
    fLastSoundDemand = Clock::now();
    note_demand();
    fNews.wait_for(lock, bound, [&] { return fIsStopped || fSound.End() != place; });
    fSound.Read(place, out);
    return !out.empty();
}

} // namespace receiver
