#pragma once

#include <atomic>
#include <memory>

#include "zSignal.h"
#include "zThread.h"

class vnSignalThreadMain;

/// A worker that runs one tick for every signal: how a service captures the next frame while the last reply
/// is on its way. There is no timer and no time-out; a signal given during a tick yields one more tick.
class vnSignalThread {
  public:
    vnSignalThread();
    virtual ~vnSignalThread();
    vnSignalThread(const vnSignalThread&) = delete;
    vnSignalThread& operator=(const vnSignalThread&) = delete;

    /// One step of work, on the worker's thread; a test or a service may also call it on its own.
    virtual void SignalThread_Tick() = 0;

    /// Starts the worker, after stopping one that runs. Returns its thread, owned here; null if it failed.
    zThread* SignalThread_Start();

    /// Asks for one tick. Any thread.
    void SignalThread_Signal();

    /// Lets the tick in progress end, and the worker with it. The caller must not hold a lock that a tick
    /// takes, and a derived class whose tick uses its members stops the worker in its own destructor.
    void SignalThread_Stop();

  private:
    friend class vnSignalThreadMain;

    std::unique_ptr<zThread> fThread;    ///< Null while stopped.
    vnSignalThreadMain* fMain = nullptr; ///< Owned by the thread, which deletes it at its end.
    std::unique_ptr<zSignal> fSignal;
    std::atomic<bool> fStopSignalTaken{false}; ///< The worker has used up the signal that stopped it.
};
