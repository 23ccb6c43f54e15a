#pragma once

#include <algorithm>
#include <memory>

/// A growable array without an order of its own: removing an element moves the last one into the hole, so it
/// takes constant time. (It is no priority queue.) It does not own what its values point to, except through
/// the RemoveAndDelete operations. An index out of range yields the zero value of T. No locks.
template <typename T>
class zHeap {
  public:
    /// The array grows by one more than this when it is full: most heaps stay small, and many exist.
    static constexpr unsigned int kGrowthStep = 8;

    zHeap() = default;
    zHeap(const zHeap&) = delete;
    zHeap& operator=(const zHeap&) = delete;

    unsigned int Count() const { return fCount; }
    T operator[](unsigned int index) const { return index < fCount ? fArray[index] : fZero; }

    T* begin() { return fArray.get(); }
    T* end() { return fArray.get() + fCount; }
    const T* begin() const { return fArray.get(); }
    const T* end() const { return fArray.get() + fCount; }

    void Append(T value) {
        if (fCount == fCapacity)
            Allocate(kGrowthStep + 1, false);
        fArray[fCount++] = value;
    }

    /// Makes room for `extra` more elements than there is room for now; with `zero` the new
    /// room holds zeroes.
    void Allocate(unsigned int extra, bool zero) {
        const size_t capacity = size_t{fCapacity} + extra;
        std::unique_ptr<T[]> array(zero ? new T[capacity]() : new T[capacity]);
        std::move(begin(), end(), array.get());
        fArray = std::move(array);
        fCapacity = static_cast<unsigned int>(capacity);
    }

    /// Returns the removed value, or the zero value when the index is out of range.
    T RemoveIndex(unsigned int index) {
        if (index >= fCount)
            return fZero;
        T removed = fArray[index];
        --fCount;
        if (index != fCount)
            fArray[index] = fArray[fCount];
        return removed;
    }

    void RemoveAll() {
        fArray.reset();
        fCount = fCapacity = 0;
    }

    void RemoveAndDeleteAll() {
        while (fCount)
            RemoveAndDeleteLast();
        RemoveAll();
    }

    void RemoveAndDeleteLast() {
        if (fCount)
            delete fArray[--fCount];
    }

  private:
    unsigned int fCount = 0;
    unsigned int fCapacity = 0;
    std::unique_ptr<T[]> fArray;
    T fZero{};
};

/// Walks a heap and may remove elements on the way: `while (it.Next()) if (...) it.RmCurrent();`.
template <typename T>
class zHeapIterator {
  public:
    explicit zHeapIterator(zHeap<T>& heap) : fHeap(heap) {}

    /// False at the end.
    bool Next() {
        if (!fStarted)
            fStarted = true;
        else if (!fRemoved)
            ++fIndex;
        fRemoved = false;
        return fIndex < fHeap.Count();
    }

    /// The zero value before the first Next, at the end and after RmCurrent.
    T Current() const { return fStarted && !fRemoved ? fHeap[fIndex] : T{}; }

    /// The last element takes the place of the removed one and is the next to be visited.
    void RmCurrent() {
        if (!fStarted || fRemoved || fIndex >= fHeap.Count())
            return;
        fHeap.RemoveIndex(fIndex);
        fRemoved = true;
    }

  private:
    zHeap<T>& fHeap;
    unsigned int fIndex = 0;
    bool fStarted = false;
    bool fRemoved = false;
};
