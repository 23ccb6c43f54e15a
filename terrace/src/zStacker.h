#pragma once

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <type_traits>

/// Counts what all zStacker arrays of the process use, to judge their inline sizes. Any thread may call.
class zStackerDebugStats {
  public:
    /// Sets all counts to zero.
    static void Startup();

    static void AllocateStack(size_t bytes) { fStackBytes += bytes; }
    /// An array has outgrown its inline elements, which lie idle from now on.
    static void AllocateHeap(size_t bytes, size_t stackBytesWasted) {
        fHeapBytes += bytes;
        fStackWasted += stackBytesWasted;
    }
    static void ReallocateHeap(size_t bytesBefore, size_t bytes) {
        fHeapBytes += bytes - bytesBefore;
        ++fReallocations;
    }
    static void FreeHeap(size_t bytes) { fHeapBytes -= bytes; }

    /// Inline bytes of all arrays made so far, and those of them that were outgrown.
    static size_t TotalStackBytes() { return fStackBytes; }
    static size_t TotalStackWasted() { return fStackWasted; }
    /// Bytes on the heap now.
    static size_t TotalHeapBytes() { return fHeapBytes; }
    static size_t TotalReallocations() { return fReallocations; }

  private:
    static inline std::atomic<size_t> fStackBytes{0};
    static inline std::atomic<size_t> fStackWasted{0};
    static inline std::atomic<size_t> fHeapBytes{0};
    static inline std::atomic<size_t> fReallocations{0};
};

/// A scratch array that is nearly always small: N elements inline, and a heap block from the first index
/// beyond them. Indexing grows it; new elements are not initialised. For plain data only.
template <typename T, unsigned int N>
class zStacker {
    static_assert(std::is_trivially_copyable_v<T>, "elements are moved as bytes");

  public:
    explicit zStacker(unsigned int step = N) : fStep(step) {
        zStackerDebugStats::AllocateStack(sizeof fInline);
    }
    ~zStacker() {
        if (fData != fInline) {
            zStackerDebugStats::FreeHeap(fCapacity * sizeof(T));
            std::free(fData);
        }
    }
    zStacker(const zStacker&) = delete;
    zStacker& operator=(const zStacker&) = delete;

    /// The reference holds until the next growth.
    T& operator[](unsigned int index) {
        if (index >= fCapacity)
            do_reallocate(size_t{index} + 1, true);
        return fData[index];
    }

    /// Elements there is room for now.
    size_t Capacity() const { return fCapacity; }

    /// Makes room for `needed` elements; with `keep` the present ones stay.
    void do_reallocate(size_t needed, bool keep) {
        const size_t base = needed > fCapacity + fStep ? needed : fCapacity;
        const size_t capacity = base + fStep;
        const bool first = fData == fInline;
        void* block = first ? std::malloc(capacity * sizeof(T)) : std::realloc(fData, capacity * sizeof(T));
        if (!block)
            std::abort();
        if (first) {
            zStackerDebugStats::AllocateHeap(capacity * sizeof(T), sizeof fInline);
            if (keep)
                std::memcpy(block, fInline, sizeof fInline);
        } else {
            zStackerDebugStats::ReallocateHeap(fCapacity * sizeof(T), capacity * sizeof(T));
        }
        fData = static_cast<T*>(block);
        fCapacity = capacity;
    }

  private:
    T fInline[N];
    T* fData = fInline;
    size_t fCapacity = N;
    size_t fStep;
};
