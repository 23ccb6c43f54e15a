#pragma once

#include <array>

/// Searches bytes for a pattern, in the simplified form after Horspool (1980): the pattern is compared from
/// its end, and the byte under its end says how far it may move on. The pattern's bytes are not owned.
class cBoyerMoore {
  public:
    static constexpr int kMaxPattern = 255;

    /// A null pattern, or a length outside 1 to `kMaxPattern`, makes every search fail.
    cBoyerMoore(const char* pattern, int length);

    /// Where the pattern first stands in `text`, or -1.
    int FindIn(const char* text, int size) const;

  private:
    const char* fPattern;
    int fLength;
    std::array<int, 256> fSkip;
};
