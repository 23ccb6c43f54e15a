#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "X11Session.h"

namespace host {

/// The session in use. A port takes it at each call, and keeps it while somebody may look at memory of it, so
/// that it can be replaced at any time. Any thread.
class X11Link {
  public:
    /// \p displayName and \p transport are what \p first was opened with, and the next will be.
    X11Link(std::string displayName, X11Transport transport, std::shared_ptr<X11Session> first);
    X11Link(const X11Link&) = delete;
    X11Link& operator=(const X11Link&) = delete;

    const std::string& DisplayName() const { return fDisplayName; }
    X11Transport Transport() const { return fTransport; }

    /// Never null; one whose server has gone stays until there is another.
    std::shared_ptr<X11Session> Session() const;
    void Replace(std::shared_ptr<X11Session> session);

    /// Fails every request from here on, those that are waiting for their reply too.
    void LetGo();

  private:
    const std::string fDisplayName;
    const X11Transport fTransport;
    mutable std::mutex fLock;
    std::shared_ptr<X11Session> fSession; ///< With the lock.
    bool fHasLetGo = false;               ///< With the lock.
};

} // namespace host
