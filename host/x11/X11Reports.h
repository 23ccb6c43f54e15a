#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

#include "Displays.h"
#include "X11Attempt.h"
#include "X11Link.h"
#include "X11Watch.h"

namespace host {

class RunLoop;

/// Tells listeners what the server tells, through the current host's run loop. A server that goes away is
/// looked for until it is back; then the link gets a new session. All this while there is a listener. Main
/// thread only, but for what says otherwise.
class X11Reports {
  public:
    explicit X11Reports(X11Link& link) : fLink(link) {}
    ~X11Reports() { stop(); }
    X11Reports(const X11Reports&) = delete;
    X11Reports& operator=(const X11Reports&) = delete;

    void Register(RefreshListener& listener);
    void Unregister(RefreshListener& listener);
    void Register(DisplaysListener& listener);
    void Unregister(DisplaysListener& listener);

    /// True while listeners hear what is drawn: not without one, nor while the server can't tell or has gone.
    /// Any thread.
    bool IsDrawingHeard() const { return fIsDrawingHeard; }

    /// Another number whenever the pointer may have got another shape; 0 while nobody would hear of that. Any
    /// thread.
    uint32_t PointerState() const { return fPointerState; }

  private:
    void start_or_stop();
    void start();
    void stop();
    void attach(std::unique_ptr<X11Watch> watch);
    void detach();
    void look_for_server();
    void reattach();
    void report();
    void update_states(bool pointerChanged);
    void tell(const X11News& news) const;

    X11Link& fLink;
    std::vector<RefreshListener*> fRefreshListeners;
    std::vector<DisplaysListener*> fDisplaysListeners;
    RunLoop* fLoop = nullptr;             ///< The one that is used; null while stopped.
    std::unique_ptr<X11Watch> fWatch;     ///< Null while there is no server.
    int fTimer = 0;                       ///< Runs while there is no server.
    std::shared_ptr<X11Attempt> fAttempt; ///< The last one, while there is no server.
    X11News fNews;                        ///< Those of a report; kept for their memory.
    std::atomic<bool> fIsDrawingHeard{false};
    std::atomic<uint32_t> fPointerState{0};
    uint32_t fPointerChanges = 0;
};

} // namespace host
