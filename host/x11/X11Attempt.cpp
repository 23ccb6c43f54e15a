#include "X11Attempt.h"

#include <system_error>
#include <thread>

namespace host {

std::shared_ptr<X11Attempt> X11Attempt::Start(const X11Link& link) {
    const std::shared_ptr<X11Attempt> attempt(new X11Attempt);
    try {
        std::thread([attempt, displayName = link.DisplayName(), transport = link.Transport()] {
            attempt->run(displayName, transport);
        }).detach();
    } catch (const std::system_error&) { // No thread to be had: it has failed.
        attempt->fIsDone = true;
    }
    return attempt;
}

void X11Attempt::run(const std::string& displayName, X11Transport transport) {
    std::string whyNot;
    if (auto found = X11Session::Open(displayName, transport, whyNot)) {
        watch = X11Watch::Open(displayName);
        if (watch && found->IsAnswered()) // Both belong to one server.
            session = std::move(found);
    }
    fIsDone = true;
}

} // namespace host
