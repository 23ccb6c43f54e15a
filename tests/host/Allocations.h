#pragma once

#include <cstddef>

/// How often this program has called operator new, in all of its forms.
size_t AllocationsSoFar();
