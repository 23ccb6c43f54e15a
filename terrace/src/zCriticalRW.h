#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "zCritical.h"
#include "zSignal.h"

/// A lock that many may hold for reading or one for writing.
///
/// A thread that reads may read again, one that writes may read and write again; one that only reads must not
/// ask to write, which would wait for ever. New readers queue behind a waiting writer, and a writer that
/// leaves lets the waiting readers in first, so that neither kind starves. Who leaves last hands the lock on:
/// whoever is woken holds it already. Unlocking what is not held is not noticed.
class Z_CAPABILITY("shared mutex") zCriticalRW {
  public:
    zCriticalRW();
    /// With signals of the caller's, which this object takes over.
    zCriticalRW(zSignal* write, zSignal* read);
    ~zCriticalRW();
    zCriticalRW(const zCriticalRW&) = delete;
    zCriticalRW& operator=(const zCriticalRW&) = delete;

    /// 0, or -1 when the lock is not free and `tryOnly` forbids to wait.
    int LockRead(bool tryOnly) Z_NO_THREAD_SAFETY_ANALYSIS;
    int LockWrite(bool tryOnly) Z_NO_THREAD_SAFETY_ANALYSIS;
    /// Deliberate: under a write lock either unlock ends the innermost of this thread's locks, whatever its
    /// kind; nested guards of both kinds rely on it.
    void UnlockRead() Z_NO_THREAD_SAFETY_ANALYSIS;
    void UnlockWrite() Z_NO_THREAD_SAFETY_ANALYSIS;

    /// Threads that read, however often each has locked.
    int ReaderCount() const;
    /// 1 while a thread writes.
    int WriterCount() const;

    /// Locks are made, used and deleted between these two only, which the boot of the foundation calls.
    static void Startup();
    static void Shutdown();

    /// Calling points for a debugging build; they do nothing.
    void DebugPrintState() {}
    void DebugThisLocker(bool) {}

  private:
    bool is_owner() const;
    int& read_count();
    void forget_read_counts();
    void become_owner();
    bool change_state(uint32_t& from, uint32_t to);
    void leave_as_reader();
    void leave_as_writer();
    void wake_readers(uint32_t count);

    std::unique_ptr<zSignal> fReadSignal;
    std::unique_ptr<zSignal> fWriteSignal;
    std::atomic<uint32_t> fState{0};
    std::atomic<int> fOwner{
        0};             ///< Id of the thread that writes, else 0. Others may only see that it isn't they.
    int fRecursion = 0; ///< Further locks of the owner; the owner's alone.
    const int fSlot;    ///< Place of this lock in each thread's array of read counts.
};

/// Reads for the length of a scope.
class zAutoCriticalRead {
  public:
    explicit zAutoCriticalRead(zCriticalRW* lock) : fLock(lock) { fLock->LockRead(false); }
    ~zAutoCriticalRead() { fLock->UnlockRead(); }
    zAutoCriticalRead(const zAutoCriticalRead&) = delete;
    zAutoCriticalRead& operator=(const zAutoCriticalRead&) = delete;

  private:
    zCriticalRW* fLock;
};

/// Writes for the length of a scope.
class zAutoCriticalWrite {
  public:
    explicit zAutoCriticalWrite(zCriticalRW* lock) : fLock(lock) { fLock->LockWrite(false); }
    ~zAutoCriticalWrite() { fLock->UnlockWrite(); }
    zAutoCriticalWrite(const zAutoCriticalWrite&) = delete;
    zAutoCriticalWrite& operator=(const zAutoCriticalWrite&) = delete;

  private:
    zCriticalRW* fLock;
};
