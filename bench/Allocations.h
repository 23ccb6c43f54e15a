#pragma once

#include <cstdint>

/// How often this process has allocated with new since it started, in all threads.
int64_t AllocationCount();
