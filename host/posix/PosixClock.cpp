#include "PosixClock.h"

#include <ctime>

namespace host {

#ifdef CLOCK_BOOTTIME
static constexpr clockid_t kClock = CLOCK_BOOTTIME;
#else
static constexpr clockid_t kClock = CLOCK_MONOTONIC;
#endif

int64_t PosixClock::MicrosecondsSinceBoot() {
    timespec now = {};
    clock_gettime(kClock, &now);
    return static_cast<int64_t>(now.tv_sec) * 1'000'000 + now.tv_nsec / 1'000;
}

} // namespace host
