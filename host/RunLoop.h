#pragma once

#include <functional>

namespace host {

/// The main thread's loop: waits for descriptors and for points in time, and calls who is interested.
class RunLoop {
  public:
    virtual ~RunLoop() = default;

    /// Runs until Stop. Main thread only. A Stop that came first makes it return at once.
    virtual void Run() = 0;

    /// Ends Run. Any thread, and signal handlers.
    virtual void Stop() = 0;

    /// Calls \p ready on the main thread whenever \p descriptor can be read (or has an error). The descriptor
    /// stays its owner's. Main thread only.
    virtual void AddDescriptor(int descriptor, std::function<void()> ready) = 0;

    /// Ends the calls for \p descriptor; nothing if there are none. Main thread only, also from inside a
    /// call.
    virtual void RemoveDescriptor(int descriptor) = 0;

    /// Calls \p fire on the main thread about every \p milliseconds (at least 1), for the first time after
    /// that long. Times that were missed are left out. Returns the timer's number, never 0. Main thread only.
    virtual int AddTimer(int milliseconds, std::function<void()> fire) = 0;

    /// Ends a timer; nothing if there is none by that number. Main thread only, also from inside a call.
    virtual void RemoveTimer(int timer) = 0;

    /// Calls \p work on the main thread, from the loop, and waits for its end. False, without a call, once
    /// the loop refuses work. Any thread that holds no lock; on the main thread it is a plain call.
    virtual bool PerformOnMainThread(const std::function<void()>& work) = 0;

    /// Lets go of whoever waits in PerformOnMainThread, and of all who will: the program ends, and the main
    /// thread is about to wait for those threads. Main thread only.
    virtual void RefuseWork() = 0;
};

} // namespace host
