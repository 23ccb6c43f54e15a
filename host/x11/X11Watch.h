#pragma once

#include <memory>
#include <string>
#include <vector>

#include "X11Connection.h"
#include "X11Damage.h"

namespace host {

/// What a server has told since it was listened to last.
struct X11News {
    std::vector<Rect> drawn;      ///< Parts of the screen.
    bool displaysChanged = false; ///< Monitors, or the screen's size.
    bool pointerChanged = false;  ///< Its shape.
};

/// Hears what the server tells unasked. It has a connection to itself, because whoever waits for a picture on
/// another thread would take the notes in, unseen by the run loop. One thread.
class X11Watch {
  public:
    /// Begins to listen. Null without a server.
    static std::unique_ptr<X11Watch> Open(const std::string& displayName);

    /// Whether drawing and the pointer are heard of: not every server can tell.
    bool HearsDrawing() const { return fDamage != nullptr; }
    bool HearsPointer() const { return fConnection->HasCursor(); }

    /// What becomes readable when there is something to take.
    int Descriptor() const;

    /// Adds to \p news what there is. It never waits. False when the server has gone, for good.
    bool Take(X11News& news);

  private:
    explicit X11Watch(std::unique_ptr<X11Connection> connection);
    void select_notes() const;
    void take_note(int type, X11News& news);

    std::unique_ptr<X11Connection> fConnection;
    std::unique_ptr<X11Damage> fDamage; ///< Null with a server that can't tell.
    int fDamageEvents;                  ///< The first event of each extension.
    int fMonitorEvents;
    int fCursorEvents;
};

} // namespace host
