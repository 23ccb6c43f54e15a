#include "zCriticalRW.h"

#include <algorithm>
#include <cassert>

#include "zPackedUniqueID.h"
#include "zResult.h"
#include "zThread.h"

namespace {

/// A counter in the state word.
struct Field {
    uint32_t one;
    uint32_t mask;

    constexpr uint32_t Count(uint32_t state) const { return (state & mask) / one; }
    constexpr bool IsZero(uint32_t state) const { return (state & mask) == 0; }
    constexpr bool IsFull(uint32_t state) const { return (state & mask) == mask; }
};

constexpr Field kReaders{1u << 0, 0x7FFFu};             // hold the lock
constexpr Field kWaitingWriters{1u << 15, 0xFFu << 15}; //
constexpr Field kWaitingReaders{1u << 23, 0xFFu << 23}; //
constexpr uint32_t kWriting = 1u << 31;                 // a writer holds the lock

constexpr int kLockSlots = 256;
constexpr unsigned int kCrowdedRetryMicroseconds = 1000;

/// Gives each lock its number.
std::unique_ptr<zPackedUniqueID> gLockSlots;
/// The thread-local array with a read count for each lock.
int gReadCounts = -1;

/// The state in which the waiting readers hold the lock.
uint32_t with_readers_let_in(uint32_t state) {
    return (state & kWaitingWriters.mask) | kWaitingReaders.Count(state);
}

/// More threads wait than the state word can count: try again later.
void wait_out_the_crowd() {
    zThread::MicroSleep(kCrowdedRetryMicroseconds);
}

} // namespace

void zCriticalRW::Startup() {
    gLockSlots = std::make_unique<zPackedUniqueID>(kLockSlots);
    gReadCounts = zThread::TLS_ReserveInt32ArraySlot();
}

void zCriticalRW::Shutdown() {
    gLockSlots.reset();
    gReadCounts = -1;
}

zCriticalRW::zCriticalRW() : zCriticalRW(zSignal::Factory(), zSignal::Factory()) {}

zCriticalRW::zCriticalRW(zSignal* write, zSignal* read)
    : fReadSignal(read), fWriteSignal(write), fSlot(gLockSlots->BorrowID()) {}

zCriticalRW::~zCriticalRW() {
    if (gLockSlots)
        gLockSlots->ReturnID(fSlot);
}

int zCriticalRW::LockRead(bool tryOnly) {
    if (is_owner()) {
        ++fRecursion;
        return result::kOk;
    }
    // Who reads already must not queue behind a writer that waits for it.
    int& count = read_count();
    if (count > 0) {
        ++count;
        return result::kOk;
    }
    uint32_t state = fState.load(std::memory_order_relaxed);
    for (;;) {
        const bool open = !(state & kWriting) && kWaitingWriters.IsZero(state) && !kReaders.IsFull(state);
        if (open) {
            if (change_state(state, state + kReaders.one))
                break;
        } else if (tryOnly) {
            return result::kFailure;
        } else if (kWaitingReaders.IsFull(state)) {
            wait_out_the_crowd();
            state = fState.load(std::memory_order_relaxed);
        } else if (change_state(state, state + kWaitingReaders.one)) {
            fReadSignal->Wait();
            break;
        }
    }
    ++count;
    return result::kOk;
}

int zCriticalRW::LockWrite(bool tryOnly) {
    if (is_owner()) {
        ++fRecursion;
        return result::kOk;
    }
    uint32_t state = fState.load(std::memory_order_relaxed);
    for (;;) {
        if (!(state & kWriting) && kReaders.IsZero(state)) {
            if (change_state(state, state | kWriting))
                break;
        } else if (tryOnly) {
            return result::kFailure;
        } else if (kWaitingWriters.IsFull(state)) {
            wait_out_the_crowd();
            state = fState.load(std::memory_order_relaxed);
        } else if (change_state(state, state + kWaitingWriters.one)) {
            fWriteSignal->Wait();
            break;
        }
    }
    become_owner();
    return result::kOk;
}

void zCriticalRW::UnlockRead() {
    if (is_owner())
        return UnlockWrite();
    if (--read_count() > 0)
        return;
    if (!zThread::TLS_IsManagedThread())
        forget_read_counts();
    leave_as_reader();
}

void zCriticalRW::UnlockWrite() {
    if (fRecursion > 0) {
        --fRecursion;
        return;
    }
    fOwner.store(0, std::memory_order_relaxed);
    leave_as_writer();
}

/// The last reader lets a waiting writer in before waiting readers.
void zCriticalRW::leave_as_reader() {
    uint32_t state = fState.load(std::memory_order_relaxed);
    for (;;) {
        if (kReaders.Count(state) > 1 || state == kReaders.one) {
            if (change_state(state, state - kReaders.one))
                return;
        } else if (!kWaitingWriters.IsZero(state)) {
            if (change_state(state, (state - kReaders.one - kWaitingWriters.one) | kWriting))
                return fWriteSignal->Signal();
        } else if (change_state(state, with_readers_let_in(state))) {
            return wake_readers(kWaitingReaders.Count(state));
        }
    }
}

/// A writer lets waiting readers in before a waiting writer, so that the kinds alternate under load.
void zCriticalRW::leave_as_writer() {
    uint32_t state = fState.load(std::memory_order_relaxed);
    for (;;) {
        if (!kWaitingReaders.IsZero(state)) {
            if (change_state(state, with_readers_let_in(state)))
                return wake_readers(kWaitingReaders.Count(state));
        } else if (!kWaitingWriters.IsZero(state)) {
            if (change_state(state, state - kWaitingWriters.one))
                return fWriteSignal->Signal();
        } else if (change_state(state, state & ~kWriting)) {
            return;
        }
    }
}

void zCriticalRW::wake_readers(uint32_t count) {
    for (; count > 0; --count)
        fReadSignal->Signal();
}

int zCriticalRW::ReaderCount() const {
    return static_cast<int>(kReaders.Count(fState.load()));
}

int zCriticalRW::WriterCount() const {
    return fState.load() & kWriting ? 1 : 0;
}

/// On success `from` keeps the old state; on failure it becomes the present one.
bool zCriticalRW::change_state(uint32_t& from, uint32_t to) {
    return fState.compare_exchange_weak(from, to, std::memory_order_acq_rel, std::memory_order_relaxed);
}

bool zCriticalRW::is_owner() const {
    return fOwner.load(std::memory_order_relaxed) == zThread::CurrentThreadID();
}

void zCriticalRW::become_owner() {
    fOwner.store(zThread::CurrentThreadID(), std::memory_order_relaxed);
}

/// How often the calling thread reads this lock. Valid until this thread asks about another lock.
int& zCriticalRW::read_count() {
    int* counts = nullptr;
    int size = 0;
    [[maybe_unused]] const int error = zThread::TLS_GetInt32Array(gReadCounts, &counts, &size, fSlot + 1);
    assert(error == result::kOk && "used outside of Startup and Shutdown");
    return counts[fSlot];
}

/// A thread that zThread did not start keeps an array only while it reads something.
void zCriticalRW::forget_read_counts() {
    int* counts = nullptr;
    int size = 0;
    if (zThread::TLS_GetInt32Array(gReadCounts, &counts, &size, 0) != result::kOk)
        return;
    if (std::all_of(counts, counts + size, [](int count) { return count == 0; }))
        zThread::TLS_FreeInt32Array(gReadCounts);
}
