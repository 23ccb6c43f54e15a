#include "zRect.h"

#include <algorithm>
#include <climits>

namespace {

// Towards zero; what fits no int becomes the nearest, and what is no number 0.
int truncate(double value) {
    if (value != value)
        return 0;
    return static_cast<int>(std::clamp(value, double{INT_MIN}, double{INT_MAX}));
}

// Where an extent begins so that it lies in the middle of another.
int centred(int parentStart, int parentExtent, int extent) {
    return zRect::Subtract(zRect::Add(parentStart, parentExtent / 2), extent / 2);
}

} // namespace

zRect zRect::FromOriginAndSize(double x, double y, double width, double height) {
    const int left = truncate(x);
    const int top = truncate(y);
    return {left, top, Subtract(Add(left, truncate(width)), 1), Subtract(Add(top, truncate(height)), 1)};
}

zRect zRect::Intersection(const zRect& other) const {
    return {std::max(left, other.left), std::max(top, other.top), std::min(right, other.right),
            std::min(bottom, other.bottom)};
}

zRect zRect::Union(const zRect& other) const {
    return {std::min(left, other.left), std::min(top, other.top), std::max(right, other.right),
            std::max(bottom, other.bottom)};
}

void zRect::CenterInParent(const zRect& parent) {
    const int l = centred(parent.left, parent.Width(), Width());
    const int t = centred(parent.top, parent.Height(), Height());
    Set(l, t, Add(l, Subtract(right, left)), Add(t, Subtract(bottom, top)));
}
