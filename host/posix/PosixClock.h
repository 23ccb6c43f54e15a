#pragma once

#include "Clock.h"

namespace host {

/// The machine's steady clock. It counts the time that the machine slept too, where the system can tell.
class PosixClock : public Clock {
  public:
    int64_t MicrosecondsSinceBoot() override;
};

} // namespace host
