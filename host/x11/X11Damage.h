#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "Displays.h"
#include "X11Connection.h"

namespace host {

/// What was drawn on the screen: the server gathers it in a region and tells once that there is something,
/// and the whole region is asked for in one go. So however much is drawn, at most one note and one answer are
/// on their way, and an idle screen costs nothing.
///
/// It has a connection to itself, because whoever waits for a picture on another thread would take the notes
/// in, unseen by the run loop. It never waits for the server. Main thread only.
class X11Damage {
  public:
    /// Begins to watch the screen of the named display (see X11Connection::Open). Null when the server can't
    /// tell, for want of DAMAGE or XFixes.
    static std::unique_ptr<X11Damage> Watch(const char* displayName);

    ~X11Damage() = default;
    X11Damage(const X11Damage&) = delete;
    X11Damage& operator=(const X11Damage&) = delete;

    /// What becomes readable when there is something to do.
    int Descriptor() const;

    /// Does what there is to do: appends to \p areas what was drawn since the last areas. False when the
    /// server has gone, for good.
    bool Take(std::vector<Rect>& areas);

  private:
    explicit X11Damage(std::unique_ptr<X11Connection> connection);
    bool create();
    void take_notes();
    void ask();
    bool take_answer(std::vector<Rect>& areas);

    std::unique_ptr<X11Connection> fConnection;
    uint32_t fDamage;
    uint32_t fRegion;
    bool fNoted = false;                ///< There is something to ask for.
    std::optional<unsigned int> fAsked; ///< The request whose answer is on its way.
};

} // namespace host
