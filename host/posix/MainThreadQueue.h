#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace host {

/// Work that other threads hand to the main thread and wait for. A loop of any kind serves it: it watches
/// Descriptor() and calls Drain() when that can be read.
class MainThreadQueue {
  public:
    /// Made on the main thread.
    MainThreadQueue();
    ~MainThreadQueue();
    MainThreadQueue(const MainThreadQueue&) = delete;
    MainThreadQueue& operator=(const MainThreadQueue&) = delete;

    /// Runs \p work on the main thread and waits for its end. False, without running it, when the queue is
    /// closed before its turn. Any thread; on the main thread it is a plain call.
    bool Perform(const std::function<void()>& work);

    /// Refuses all work from here on, and what waits. Main thread.
    void Close();

    /// Can be read while there is work.
    int Descriptor() const { return fEvent; }

    /// Runs what waits, in the order it came. Main thread.
    void Drain();

  private:
    struct Entry {
        const std::function<void()>& work;
        enum { kWaiting, kDone, kRefused } state = kWaiting;
    };

    Entry* take_first();
    void finish(Entry& entry);

    const std::thread::id fMainThread = std::this_thread::get_id();
    int fEvent = -1;
    std::mutex fLock;
    std::condition_variable fFinished;
    std::deque<Entry*> fEntries; ///< Each lies on the stack of the thread that waits for it.
    bool fClosed = false;
};

} // namespace host
