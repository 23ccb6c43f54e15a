#pragma once

#include <cstdint>

namespace host {

/// The machine's time. Any thread.
class Clock {
  public:
    virtual ~Clock() = default;

    /// Microseconds since the machine started; never goes back.
    virtual int64_t MicrosecondsSinceBoot() = 0;

    /// Sixtieths of a second since the machine started, in 32 bits.
    uint32_t Ticks() { return static_cast<uint32_t>(MicrosecondsSinceBoot() * 60 / 1'000'000); }
};

} // namespace host
