#pragma once

#include "Clock.h"

/// A clock that stands where the test puts it.
class SetClock : public host::Clock {
  public:
    int64_t microseconds = 0;
    int64_t MicrosecondsSinceBoot() override { return microseconds; }
};
