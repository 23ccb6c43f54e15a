#pragma once

#include <cstdint>
#include <memory>

#include "zRefCount.h"

/// The smallest power of two that isn't below \p value; 0 for 0 and for values above 0x80000000.
unsigned RaiseToUpperPowerOfTwo(unsigned value);

/// A ring of bytes between one writer and one reader, who hold a lock of their own around each call.
///
/// The counters only ever rise; a position is a counter's lower bits, since the capacity is a power of two.
class vnCircularBuffer : public zRefCount {
  public:
    static constexpr unsigned kDefaultCapacity = 0x200000;

    vnCircularBuffer() : vnCircularBuffer(kDefaultCapacity) {}
    /// The capacity is \p size raised to a power of two. One of 0 holds nothing.
    explicit vnCircularBuffer(unsigned size);
    ~vnCircularBuffer() override;

    /// Appends a block, or drops it whole: without overwriting one that doesn't leave a byte free, with
    /// overwriting one that is larger than the ring.
    void WriteData(const void* data, unsigned size);

    /// Takes the oldest bytes. Zeros, with nothing taken, when there are fewer than asked for.
    void ReadData(void* data, unsigned size);

    /// Forgets everything; the counters start anew.
    void Clear();

    /// Deliberate: overwriting doesn't move the reader, who goes on where it was and gets newer bytes there.
    /// On at first.
    void SetAllowOverwriting(bool allow) { fAllowOverwriting = allow; }
    bool AllowsOverwriting() const { return fAllowOverwriting; }

    unsigned BufferSizeInBytes() const { return fCapacity; }
    unsigned long long TotalNumberOfBytesRead() const { return fBytesRead; }
    unsigned long long TotalNumberOfBytesWritten() const { return fBytesWritten; }

    /// Bytes that wait. The capacity, when the writer is a whole number of rounds ahead.
    unsigned TotalNumberOfBytesAvailable() const;

  private:
    struct Freer {
        void operator()(uint8_t* storage) const;
    };
    unsigned position(uint64_t counter) const { return static_cast<unsigned>(counter) & (fCapacity - 1); }

    uint64_t fBytesRead = 0;
    uint64_t fBytesWritten = 0;
    const unsigned fCapacity;
    std::unique_ptr<uint8_t, Freer> fStorage; ///< Null when memory was short.
    bool fAllowOverwriting = true;
};
