#include "Interruption.h"

#include <cerrno>
#include <cstdint>
#include <ctime>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace receiver {

Interruption::Interruption() : fEvent(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

Interruption::~Interruption() {
    close(fEvent);
}

void Interruption::Raise() {
    const int error = errno; // A signal handler's caller may look at it.
    fIsRaised = true;
    const uint64_t one = 1;
    [[maybe_unused]] const auto written = write(fEvent, &one, sizeof one);
    errno = error;
}

bool Interruption::WaitUntil(Clock::time_point time) const {
    while (!IsRaised()) {
        const auto left = std::chrono::duration_cast<std::chrono::nanoseconds>(time - Clock::now());
        if (left.count() <= 0)
            return true;
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(left);
        const timespec bound{seconds.count(), (left - seconds).count()};
        pollfd event{fEvent, POLLIN, 0};
        ppoll(&event, 1, &bound, nullptr);
    }
    return false;
}

} // namespace receiver
