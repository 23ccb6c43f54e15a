#pragma once

#include <atomic>
#include <memory>

#include "zCritical.h"
#include "zList.h"
#include "zOki.h"
#include "zSignal.h"
#include "zString.h"
#include "zThread.h"

class zBonsai;
class zCriticalRW;
class zObserver;
class zRecord;

/// Delivers messages to observers, one at a time, on a thread of its own (Run) or on whatever thread calls
/// ObserveOneMessage. Whoever posts only appends to a queue: no observer runs on the poster's thread, and
/// none can hold it up.
///
/// A message is a record: its kind in the variable `what`, the observer that it is for in `obID`, and for
/// a change of a table's record the table in `tbid`, the record's id as its own, and the new and the old
/// values as children 0 and 1.
class zObserverHandler : public zThreadMain {
  public:
    explicit zObserverHandler(const char* name);
    /// Stops, lets go of the observers, which live on, and deletes the messages.
    ~zObserverHandler() override;
    zObserverHandler(const zObserverHandler&) = delete;
    zObserverHandler& operator=(const zObserverHandler&) = delete;

    /// Starts the thread and returns once it is up. A null name stands for the handler's own. -1 where the
    /// thread can't be had, or was started before: a stopped handler cannot be restarted.
    int Run(const char* name);
    /// Ends the thread, after the call in progress; messages stay in the queue. On the handler's own thread
    /// it only asks for the end. Does nothing without a thread.
    void Stop();

    /// Any thread, as are the following. -1 for null, and for an observer that some handler has already.
    int AddObserver(zObserver* observer);
    /// Takes the observer out, and its messages with it. It does not wait for a call in progress. An id of
    /// another handler's observer, or of none, changes nothing.
    void RemoveObserver(int id);

    /// Hands a message to the handler of an observer, and takes it over in any case. -1 when there is no such
    /// observer.
    ///
    /// With a `replaceKey`, the id of a variable, the message takes the place of the last one in the queue if
    /// both have the same value there, so that a slow observer sees the newest state of a thing and not every
    /// one. Deliberate: observers of one handler share its queue, so such a key names its observer or thing
    /// among all of them.
    static int PostNotification(int observer, zRecord* message, unsigned int replaceKey);

    /// Handles the first message. -1 when the queue is empty, else 0.
    int ObserveOneMessage();

    /// Tells whoever pumps this handler that there is one message more. A handler that another loop pumps
    /// overrides it to wake that loop; it is called on the poster's thread, with no lock held.
    virtual void SignalQueue();

    /// The body of the thread.
    int Main(int argc, const char** argv) override;

    /// Observers are used between these two only, which the boot of the foundation calls.
    static void Startup();
    static void Shutdown();

    /// The handler of the main thread is nobody's until it is set, and not owned. The last two give false
    /// where there is none.
    static void SetMainThreadObseverHandler(zObserverHandler* handler);
    static zObserverHandler* MainThreadObserverHandler();
    static bool AddObserverToMainThreadHandler(zObserver* observer);
    static bool RemoveObserverFromMainThreadHandler(int id);

  protected:
    /// Takes all observers out and waits until no poster is left here. A class that overrides SignalQueue
    /// calls it in its destructor.
    void let_go_of_observers();

  private:
    struct _observer_lu;
    using LookupOki = zOki_idt<_observer_lu, int>;

    static bool find_observer(int id, _observer_lu& found);
    static zObserverHandler* begin_post(int observer);
    void push_notification(int observer, zRecord* message, unsigned int replaceKey);
    bool append_or_replace(zRecord* message, unsigned int replaceKey);
    static void take_out_of_lookup(int id);
    void remove_observer_from_messages(int id);

    const zString fName;
    std::unique_ptr<zThread> fThread; ///< Null until Run, and for a handler that its owner pumps.
    zList<zObserver*> fObservers; ///< Guarded by fCritical. Not owned; each has this handler as its owner.
    zList<zRecord*> fMessages;    ///< Guarded by fCritical. Owned.
    const std::unique_ptr<zCritical> fCritical;
    const std::unique_ptr<zSignal> fSignal; ///< At least one count for each message.
    std::atomic<bool> fRunning{true};
    std::atomic<int> fThreadID{0}; ///< Of the thread in Main, else 0.
    std::atomic<int> fPosters{0};  ///< Threads between the look-up of this handler and the end of a post.

    // From an id to handler and observer, for any thread: a poster needs to know neither. The lock is never
    // held while a handler's own is taken.
    static std::unique_ptr<zBonsai> fFastLookup;
    static std::unique_ptr<zCriticalRW> fFastCriticalRW;
};
