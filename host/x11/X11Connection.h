#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "PixelRect.h"
#include "X11PixelFormat.h"

struct xcb_connection_t;
struct xcb_screen_t;

namespace host {

/// A connection to an X server: its default screen, how that lays out images, and which extensions it offers.
/// An extension that is absent costs its user a slower or poorer way and nothing else. Requests may come from
/// any thread. When the server goes away every request fails at once, for good.
class X11Connection {
  public:
    /// Opens the named display, or the environment's for null or "". Null with one line of reason when there
    /// is no server, or one without true colours. Lets the process ignore SIGPIPE.
    static std::unique_ptr<X11Connection> Open(const char* displayName, std::string& whyNot);

    ~X11Connection();
    X11Connection(const X11Connection&) = delete;
    X11Connection& operator=(const X11Connection&) = delete;

    /// False once the server has gone.
    bool IsAlive() const;

    /// Ends all requests, those that are waiting for their reply too, as if the server had gone. Any thread.
    void Abort() const;

    xcb_connection_t* Xcb() const { return fXcb; }
    uint32_t Root() const { return fRoot; }
    int Depth() const { return fDepth; }
    const X11PixelFormat& Format() const { return fFormat; }

    /// The screen's size when the connection was made. It may change at any time.
    PixelRect FirstScreen() const { return fFirstScreen; }

    bool HasMonitors() const { return fHasMonitors; }         ///< RandR 1.5 or later.
    bool HasCursor() const { return fHasCursor; }             ///< XFixes.
    bool HasSharedMemory() const { return fHasSharedMemory; } ///< MIT-SHM, with a server on this machine.
    bool HasDamage() const { return fHasDamage; }             ///< DAMAGE, with XFixes for its regions.

    /// Throws away what the server sent unasked, such as notes on keyboard maps, which would pile up
    /// otherwise.
    void DropEvents() const;

  private:
    X11Connection(xcb_connection_t* xcb, const xcb_screen_t& screen);
    bool query_monitors() const;
    bool query_cursor() const;
    bool query_shared_memory() const;
    bool query_damage() const;

    xcb_connection_t* fXcb;
    uint32_t fRoot;
    int fDepth;
    PixelRect fFirstScreen;
    X11PixelFormat fFormat;
    bool fHasMonitors;
    bool fHasCursor;
    bool fHasSharedMemory;
    bool fHasDamage;
};

} // namespace host
