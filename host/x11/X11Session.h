#pragma once

#include <memory>
#include <string>

#include "X11Connection.h"
#include "X11Screen.h"
#include "X11Windows.h"

namespace host {

/// All that stands on one connection to the server. Once that server has gone it fails for good, and another
/// session takes its place (see X11Link).
class X11Session {
  public:
    /// As X11Connection::Open.
    static std::shared_ptr<X11Session> Open(const std::string& displayName, X11Transport transport,
                                            std::string& whyNot);

    /// Asks the server something, and waits. False when it has gone.
    bool IsAnswered() const;

    const X11Connection& Connection() const { return *fConnection; }
    X11Screen& Screen() { return fScreen; }
    X11Windows& Windows() { return fWindows; }

  private:
    X11Session(std::unique_ptr<X11Connection> connection, X11Transport transport);

    const std::unique_ptr<X11Connection> fConnection;
    X11Screen fScreen;
    X11Windows fWindows;
};

} // namespace host
