#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <vector>

namespace host {

/// A queue of sound blocks between two threads. When it is full the oldest block is lost, and counted. The
/// memory of its blocks is kept, so that a stream settles without allocations.
class PulseBlockQueue {
  public:
    /// For \p blocks blocks, none of them larger than the largest whole number of \p frameBytes in \p
    /// blockBytes.
    PulseBlockQueue(size_t blocks, size_t blockBytes, size_t frameBytes);

    /// Appends samples in as many blocks as it takes; null stands for silence.
    void Push(const void* samples, size_t size);

    /// Waits until there is a block, at most \p milliseconds; false when there is none.
    bool Wait(unsigned milliseconds);

    bool IsEmpty();

    /// Moves the oldest block to \p block, which has room for \p size bytes, and sets its size. 0, or -1 when
    /// there is none or it doesn't fit: then it is lost.
    int Pop(void* block, uint32_t& size);

    uint64_t Dropped();

  private:
    std::vector<uint8_t>& next_free();

    const size_t fBlockBytes;
    std::mutex fMutex;
    std::condition_variable fFilled;
    std::vector<std::vector<uint8_t>> fBlocks; ///< A ring.
    size_t fFirst = 0;
    size_t fCount = 0;
    uint64_t fDropped = 0;
};

} // namespace host
