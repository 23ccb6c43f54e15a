#pragma once

class zThreadTLS;

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

    /// Makes the caller the main thread, unless the package is in use already, and thread-local storage
    /// usable.
    static void Startup();
    /// Main thread only, when no other thread uses the package any more.
    static void Shutdown();

    /// Starts a thread that runs `main`. The name shows in debuggers (its first 15 characters). Null when the
    /// platform refuses another thread; with kDeleteMain the body is deleted then. With kDeleteThread the
    /// result tells no more than that: the object may be gone already.
    static zThread* Factory(const char* name, zThreadMain* main, char flags, char priority);

    /// Small numbers from 1 up, given in the order of creation or first asking. The main thread has 1.
    static int CurrentThreadID();
    static bool IsCurrentThreadMain() { return CurrentThreadID() == 1; }

    static void MicroSleep(unsigned int microseconds);
    /// Sleeps until a time of zTime::MicroNow; returns at once when that has passed.
    static void MicroSleepUntil(long long time);

    // Thread-local storage. Each thread has its own value in a slot, which all threads know by its number.
    // There are 31 managed slots, whose values go with their thread; a reserve gives -1 when they are taken.

    /// A key of the platform, which manages nothing: the value is any pointer. -1 when there are no more.
    static int TLS_ReserveSlot();
    /// Null where nothing was set.
    static void* TLS_GetData(int slot);
    static int TLS_SetData(int slot, void* data);

    static int TLS_ReserveInt32ArraySlot();
    /// The calling thread's array, grown to twice `minimum` when it is shorter; new entries are 0. Valid
    /// until it grows or is freed. -1 for a slot that is no array's.
    static int TLS_GetInt32Array(int slot, int** array, int* count, int minimum);
    /// Releases the calling thread's array.
    static void TLS_FreeInt32Array(int slot);

    static int TLS_ReserveClassSlot();
    /// The calling thread's object, or null.
    static zThreadTLS* TLS_GetClass(int slot);
    /// Takes over the object. Where the slot already holds one for this thread the new one is deleted, -1.
    static int TLS_SetClass(int slot, zThreadTLS* object);

    /// Marks the calling thread as one that calls TLS_ThreadEnd; Factory's threads do both.
    static void TLS_ThreadBegin();
    /// Releases what the calling thread has in the managed slots.
    static void TLS_ThreadEnd();
    static bool TLS_IsManagedThread();

    virtual ~zThread() = default;
    zThread(const zThread&) = delete;
    zThread& operator=(const zThread&) = delete;

    virtual int ThreadID() const = 0;
    /// Waits for the end of the thread and returns its result; a second call returns it again.
    virtual int WaitForExit() = 0;

  protected:
    zThread() = default;

  private:
    static void TLS_Startup();
    static void TLS_Shutdown();
};
