#pragma once

#include <atomic>
#include <memory>

/// Base of objects that several owners share. The count starts at 1 for the creator; who keeps the object
/// takes a reference, and who created it releases its own when done with it. Any thread may add and release.
class zRefCount {
  public:
    zRefCount() = default;
    virtual ~zRefCount() = default;
    zRefCount(const zRefCount&) = delete;
    zRefCount& operator=(const zRefCount&) = delete;

    /// Returns the new count.
    int AddRef() { return ++fCount; }

    /// Returns the new count; at 0 the object is gone.
    int Release() {
        const int count = --fCount;
        if (count == 0)
            delete this;
        return count;
    }

  private:
    std::atomic<int> fCount{1};
};

/// Releases the reference that a zRefPtr holds.
struct zReleaser {
    void operator()(zRefCount* object) const { object->Release(); }
};

/// Owns one reference and releases it at the end of the scope.
template <typename T>
using zRefPtr = std::unique_ptr<T, zReleaser>;
