#pragma once

class zRecord;

/// A rectangle of whole pixels whose four edges are inclusive: one pixel has left == right. Crops and insets,
/// four distances from the edges, travel in it as well. All arithmetic wraps instead of overflowing, because
/// the numbers may come from a client.
class zRect {
  public:
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    /// The one pixel at 0,0.
    constexpr zRect() = default;
    /// `width` by `height` pixels at 0,0.
    constexpr zRect(int width, int height) : right(Subtract(width, 1)), bottom(Subtract(height, 1)) {}
    constexpr zRect(int l, int t, int r, int b) : left(l), top(t), right(r), bottom(b) {}
    /// Reads "left", "top", "right", "bottom" of the record, each with a default of the arguments; "width"
    /// and "height", where present, override the far edges.
    zRect(const zRecord* record, int l, int t, int r, int b);

    /// A rectangle given by origin and size in floating point, each truncated towards zero.
    static zRect FromOriginAndSize(double x, double y, double width, double height);

    constexpr void Set(int l, int t, int r, int b) { *this = zRect(l, t, r, b); }

    constexpr int Width() const { return Add(Subtract(right, left), 1); }
    constexpr int Height() const { return Add(Subtract(bottom, top), 1); }
    /// Left is not beyond right and top is not below bottom.
    constexpr bool Valid() const { return left <= right && top <= bottom; }

    constexpr bool Contains(int x, int y) const { return x >= left && x <= right && y >= top && y <= bottom; }
    constexpr bool Contains(const zRect& other) const {
        return other.left >= left && other.right <= right && other.top >= top && other.bottom <= bottom;
    }
    /// The two share at least one pixel.
    constexpr bool Intersects(const zRect& other) const {
        return left <= other.right && other.left <= right && top <= other.bottom && other.top <= bottom;
    }
    /// The pixels in both; not Valid() when they share none.
    zRect Intersection(const zRect& other) const;
    /// The smallest rectangle around both.
    zRect Union(const zRect& other) const;
    /// Moves this rectangle, size unchanged, so that its centre lies on the parent's (integer halves).
    void CenterInParent(const zRect& parent);

    constexpr bool operator==(const zRect&) const = default;

    /// Sum and difference modulo 2^32, for coordinates that nobody has checked.
    static constexpr int Add(int a, int b) {
        return static_cast<int>(static_cast<unsigned int>(a) + static_cast<unsigned int>(b));
    }
    static constexpr int Subtract(int a, int b) {
        return static_cast<int>(static_cast<unsigned int>(a) - static_cast<unsigned int>(b));
    }
};
