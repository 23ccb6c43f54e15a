#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "Geometry.h"
#include "X11Connection.h"

namespace host {

/// What was drawn on the screen: the server gathers it in a region and sends one note when there is
/// something, and the whole region is asked for in one go. So however much is drawn, at most one note and one
/// answer are on their way, and an idle screen costs nothing. It never waits for the server. One thread.
class X11Damage {
  public:
    /// Begins to gather; waits for the server, once. Null when that can't, for want of DAMAGE or XFixes. The
    /// connection outlives it.
    static std::unique_ptr<X11Damage> Gather(const X11Connection& connection);

    /// A note has come.
    void Note() { fNoted = true; }

    /// Takes the next step: asks for what was noted, or appends to \p areas what was drawn since the last
    /// areas. False when there is nothing to do before the server has sent more.
    bool Step(std::vector<Rect>& areas);

  private:
    explicit X11Damage(const X11Connection& connection);
    bool create();
    void ask();
    bool take_answer(std::vector<Rect>& areas);

    const X11Connection& fConnection;
    uint32_t fDamage;
    uint32_t fRegion;
    bool fNoted = false;                ///< There is something to ask for.
    std::optional<unsigned int> fAsked; ///< The request whose answer is on its way.
};

} // namespace host
