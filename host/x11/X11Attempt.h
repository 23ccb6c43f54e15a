#pragma once

#include <atomic>
#include <memory>

#include "X11Link.h"
#include "X11Watch.h"

namespace host {

/// An attempt to reach the server of a link anew. It runs on a thread of its own, since a server that is
/// coming up or hangs keeps it waiting; who has no use for it any more drops it.
class X11Attempt {
  public:
    static std::shared_ptr<X11Attempt> Start(const X11Link& link);

    bool IsDone() const { return fIsDone; }

    /// Once it is done. There is a watch with a session; null without a server.
    std::shared_ptr<X11Session> session;
    std::unique_ptr<X11Watch> watch;

  private:
    X11Attempt() = default;
    void run(const std::string& displayName, X11Transport transport);

    std::atomic<bool> fIsDone{false};
};

} // namespace host
