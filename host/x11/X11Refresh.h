#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "Displays.h"
#include "X11Damage.h"

namespace host {

class RunLoop;

/// Tells refresh listeners what was drawn on a screen, through the current host's run loop. It watches the
/// screen while there is a listener. Main thread only.
class X11Refresh {
  public:
    /// \p displayName as for X11Connection::Open.
    explicit X11Refresh(const char* displayName) : fDisplayName(displayName ? displayName : "") {}
    ~X11Refresh() { stop(); }
    X11Refresh(const X11Refresh&) = delete;
    X11Refresh& operator=(const X11Refresh&) = delete;

    void Register(RefreshListener& listener);
    void Unregister(RefreshListener& listener);

    /// True while listeners hear what is drawn: not without one, nor with a server that can't tell or has
    /// gone. Any thread.
    bool IsHeard() const { return fIsHeard; }

  private:
    void start();
    void stop();
    void report();

    const std::string fDisplayName;
    std::vector<RefreshListener*> fListeners;
    std::unique_ptr<X11Damage> fDamage;
    RunLoop* fLoop = nullptr; ///< The one that watches fDamage.
    std::vector<Rect> fAreas; ///< Those of a report; kept for their memory.
    std::atomic<bool> fIsHeard{false};
};

} // namespace host
