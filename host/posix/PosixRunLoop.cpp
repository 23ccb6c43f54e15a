#include "PosixRunLoop.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace host {

PosixRunLoop::PosixRunLoop() {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) == 0) {
        fStopReader = ends[0];
        fStopWriter = ends[1];
    }
    AddDescriptor(fQueue.Descriptor(), [this] { fQueue.Drain(); });
}

PosixRunLoop::~PosixRunLoop() {
    if (fStopReader >= 0) {
        close(fStopReader);
        close(fStopWriter);
    }
}

void PosixRunLoop::Run() {
    SourceList readySources;
    while (wait(readySources)) {
        for (const auto& source : readySources) {
            if (!source->removed)
                source->ready();
        }
        fire_due_timers();
    }
}

void PosixRunLoop::Stop() {
    // A full pipe already says what this byte would; a handler must leave errno as it found it.
    const int savedError = errno;
    [[maybe_unused]] const ssize_t written = write(fStopWriter, "", 1);
    errno = savedError;
}

void PosixRunLoop::AddDescriptor(int descriptor, std::function<void()> ready) {
    RemoveDescriptor(descriptor);
    fSources.push_back(std::make_shared<Source>(Source{descriptor, std::move(ready)}));
}

void PosixRunLoop::RemoveDescriptor(int descriptor) {
    const auto found = std::find_if(fSources.begin(), fSources.end(),
                                    [&](const auto& source) { return source->descriptor == descriptor; });
    if (found == fSources.end())
        return;
    (*found)->removed = true;
    fSources.erase(found);
}

int PosixRunLoop::AddTimer(int milliseconds, std::function<void()> fire) {
    const std::chrono::milliseconds period(std::max(milliseconds, 1));
    const Moment due = std::chrono::steady_clock::now() + period;
    fTimers.push_back(std::make_shared<Timer>(Timer{++fLastTimer, period, due, std::move(fire)}));
    return fLastTimer;
}

void PosixRunLoop::RemoveTimer(int timer) {
    const auto found =
        std::find_if(fTimers.begin(), fTimers.end(), [&](const auto& one) { return one->number == timer; });
    if (found == fTimers.end())
        return;
    (*found)->removed = true;
    fTimers.erase(found);
}

/// Milliseconds, rounded up so that no timer is found early; -1 without timers.
int PosixRunLoop::time_until_due() const {
    if (fTimers.empty())
        return -1;
    const auto& first = *std::min_element(fTimers.begin(), fTimers.end(),
                                          [](const auto& a, const auto& b) { return a->due < b->due; });
    const auto rest =
        std::chrono::ceil<std::chrono::milliseconds>(first->due - std::chrono::steady_clock::now());
    return static_cast<int>(std::max<int64_t>(rest.count(), 0));
}

void PosixRunLoop::fire_due_timers() {
    if (fTimers.empty())
        return;
    const Moment now = std::chrono::steady_clock::now();
    const TimerList timers = fTimers;
    for (const auto& timer : timers) {
        if (timer->removed || timer->due > now)
            continue;
        timer->due += timer->period;
        if (timer->due <= now)
            timer->due = now + timer->period;
        timer->fire();
    }
}

/// Takes back every Stop so far, so that the loop can run again.
bool PosixRunLoop::take_stop() {
    char bytes[64];
    bool stopped = false;
    while (read(fStopReader, bytes, sizeof bytes) > 0)
        stopped = true;
    return stopped;
}

/// Waits for sources that are ready; there may be none after a signal. False to end the loop.
bool PosixRunLoop::wait(SourceList& readySources) {
    readySources.clear();
    if (fStopReader < 0) // Nothing could ever end it.
        return false;

    const SourceList watched = fSources;
    std::vector<pollfd> entries{{fStopReader, POLLIN, 0}};
    for (const auto& source : watched)
        entries.push_back({source->descriptor, POLLIN, 0});
    if (poll(entries.data(), entries.size(), time_until_due()) < 0)
        return errno == EINTR || errno == ENOMEM;
    if (entries[0].revents && take_stop())
        return false;

    for (size_t i = 0; i < watched.size(); ++i) {
        const short events = entries[i + 1].revents;
        if (events & POLLNVAL) // Its owner closed it without a word: it would be reported for ever.
            RemoveDescriptor(watched[i]->descriptor);
        else if (events)
            readySources.push_back(watched[i]);
    }
    return true;
}

} // namespace host
