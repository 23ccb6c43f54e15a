#pragma once

/// The body of a thread.
class zThreadMain {
  public:
    virtual ~zThreadMain() = default;

    /// Called once on the new thread with 0 and null; its value is the thread's result.
    virtual int Main(int argc, const char** argv) = 0;
};

/// A running thread, made by Factory. It cannot be killed: its body watches a flag or signal of its
/// own, the owner asks through that, then calls WaitForExit and deletes this object (and the body,
/// unless kDeleteMain does).
class zThread {
  public:
    /// Flags of Factory.
    static constexpr char kDeleteMain = 1; ///< Delete the body when Main returns.
    static constexpr char kDeleteThread =
        2; ///< Delete the zThread when Main returns; nobody may wait for it.
    static constexpr char kWaitForStart = 4; ///< Factory returns once the new thread runs.

    /// Priorities of Factory. Where the machine does not allow one, the thread runs at the normal one.
    static constexpr char kHighestPriority = 1; ///< Fixed priority ahead of all time-sharing threads.
    static constexpr char kHighPriority = 2;    ///< Fixed priority, behind kHighestPriority.
    static constexpr char kRaisedPriority = 3;
    static constexpr char kNormalPriority = 4;
    static constexpr char kLowPriority = 5;
    static constexpr char kLowestPriority = 6;

    /// Makes the caller the main thread, unless the package is in use already.
    static void Startup();

    /// Starts a thread that runs `main`. The name shows in debuggers (its first 15 characters). Null when the
    /// platform refuses another thread; with kDeleteMain the body is deleted then. With kDeleteThread the
    /// result tells no more than that: the object may be gone already.
    static zThread* Factory(const char* name, zThreadMain* main, char flags, char priority);

    /// Small numbers from 1 up, given in the order of creation or first asking. The main thread has 1.
    static int CurrentThreadID();
    static bool IsCurrentThreadMain() { return CurrentThreadID() == 1; }

    static void MicroSleep(unsigned int microseconds);
    /// Sleeps until a time in microseconds on the machine's monotonic clock; returns at once when
    /// that has passed.
    static void MicroSleepUntil(long long time);

    virtual ~zThread() = default;
    zThread(const zThread&) = delete;
    zThread& operator=(const zThread&) = delete;

    virtual int ThreadID() const = 0;
    /// Waits for the end of the thread and returns its result; a second call returns it again.
    virtual int WaitForExit() = 0;

  protected:
    zThread() = default;
};
