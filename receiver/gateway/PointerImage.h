#pragma once

#include <string>

namespace receiver {

struct PointerShape;

/// A pointer's shape as a PNG with alpha; empty without memory.
std::string PointerImage(const PointerShape& shape);

} // namespace receiver
