#pragma once

#include <limits>

#include "Displays.h"

/// Areas that no picture can be made of: empty, of no number, or beyond what memory and integers hold.
inline constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kEndless = std::numeric_limits<double>::infinity();
inline constexpr host::Rect kAbsurdAreas[] = {
    {0, 0, 0, 10},          {0, 0, 10, 0},           {0, 0, 10, -1},        {0, 0, 0.9, 10},
    {kNoNumber, 0, 10, 10}, {0, kNoNumber, 10, 10},  {0, 0, kNoNumber, 10}, {0, 0, kEndless, 10},
    {-kEndless, 0, 10, 10}, {2147483648.0, 0, 1, 1}, {0, -1e300, 10, 10},   {0, 0, 1, 4294967296.0},
    {0, 0, 65535, 65535},
};
