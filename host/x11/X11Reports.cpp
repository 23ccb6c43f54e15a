#include "X11Reports.h"

#include <utility>

#include "Host.h"

namespace host {

/// How often a server that has gone is looked for, in milliseconds.
static constexpr int kSearchPeriod = 250;

void X11Reports::Register(RefreshListener& listener) {
    fRefreshListeners.push_back(&listener);
    start_or_stop();
}

void X11Reports::Unregister(RefreshListener& listener) {
    std::erase(fRefreshListeners, &listener);
    start_or_stop();
}

void X11Reports::Register(DisplaysListener& listener) {
    fDisplaysListeners.push_back(&listener);
    start_or_stop();
}

void X11Reports::Unregister(DisplaysListener& listener) {
    std::erase(fDisplaysListeners, &listener);
    start_or_stop();
}

void X11Reports::start_or_stop() {
    const bool isWanted = !fRefreshListeners.empty() || !fDisplaysListeners.empty();
    if (isWanted && !fLoop)
        start();
    else if (!isWanted)
        stop();
    update_states(false);
}

void X11Reports::start() {
    fLoop = &Host::Current().RunLoopPort();
    // A session that lost its server while nobody listened needs another one, too.
    auto watch = X11Watch::Open(fLink.DisplayName());
    if (watch && fLink.Session()->IsAnswered())
        attach(std::move(watch));
    else
        detach();
}

void X11Reports::stop() {
    if (fWatch)
        fLoop->RemoveDescriptor(fWatch->Descriptor());
    if (fTimer)
        fLoop->RemoveTimer(fTimer);
    fWatch.reset();
    fTimer = 0;
    fAttempt.reset();
    fLoop = nullptr;
}

void X11Reports::attach(std::unique_ptr<X11Watch> watch) {
    fWatch = std::move(watch);
    fLoop->AddDescriptor(fWatch->Descriptor(), [this] { report(); });
    update_states(true);
    report(); // What came with the set-up is in memory already, where the loop doesn't look.
}

void X11Reports::detach() {
    if (fWatch)
        fLoop->RemoveDescriptor(fWatch->Descriptor());
    fWatch.reset();
    update_states(false);
    fTimer = fLoop->AddTimer(kSearchPeriod, [this] { look_for_server(); });
}

void X11Reports::look_for_server() {
    if (fAttempt && !fAttempt->IsDone())
        return;
    if (fAttempt && fAttempt->session)
        reattach();
    else
        fAttempt = X11Attempt::Start(fLink);
}

/// Nothing of the new server's screen is known: all of it has changed.
void X11Reports::reattach() {
    fLoop->RemoveTimer(std::exchange(fTimer, 0));
    const std::shared_ptr<X11Attempt> attempt = std::exchange(fAttempt, nullptr);
    const PixelRect screen = attempt->session->Connection().FirstScreen();
    X11News news;
    news.displaysChanged = true;
    news.drawn = {{0, 0, static_cast<double>(screen.width), static_cast<double>(screen.height)}};
    fLink.Replace(std::move(attempt->session));
    attach(std::move(attempt->watch));
    tell(news);
}

void X11Reports::report() {
    fNews.drawn.clear();
    fNews.displaysChanged = false;
    fNews.pointerChanged = false;
    const bool lives = fWatch->Take(fNews) && fLink.Session()->Connection().IsAlive();
    update_states(fNews.pointerChanged);
    if (!lives)
        detach();
    tell(fNews);
}

void X11Reports::update_states(bool pointerChanged) {
    if (pointerChanged && ++fPointerChanges == 0)
        ++fPointerChanges;
    fPointerState = fWatch && fWatch->HearsPointer() ? fPointerChanges : 0;
    fIsDrawingHeard = fWatch && fWatch->HearsDrawing() && !fRefreshListeners.empty();
}

void X11Reports::tell(const X11News& news) const {
    if (news.displaysChanged) {
        for (DisplaysListener* listener : fDisplaysListeners)
            listener->DisplaysChanged();
    }
    if (!news.drawn.empty()) {
        for (RefreshListener* listener : fRefreshListeners)
            listener->ScreenRefreshed(news.drawn);
    }
}

} // namespace host
