#pragma once

#include <atomic>

#include "zList.h"

class zObserverHandler;
class zRecord;

/// Someone who wants messages. It gets them one at a time from the zObserverHandler that it was added to, on
/// that handler's thread; whoever wants to reach it needs no more than its id.
///
/// Its owner takes it out of the handler before deleting it, at a time when no message can be under way to
/// it: on the handler's thread, or after the handler has stopped.
class zObserver {
  public:
    zObserver();
    /// Leaves the handler, so that no message comes after it.
    virtual ~zObserver();
    zObserver(const zObserver&) = delete;
    zObserver& operator=(const zObserver&) = delete;

    /// A message, on the handler's thread and with no lock held: observers may be added and removed, messages
    /// posted and records set. `what` is the message's kind. `newValues` and `oldValues` are the first two
    /// children of a message about changed variables, else null. All of it goes when the call returns.
    virtual void HandleMessage(unsigned int what, zRecord* message, zRecord* newValues,
                               zRecord* oldValues) = 0;

    /// Unique in the process.
    int ObserverID() const { return fID; }

    bool IsRunning() const { return fRunning; }
    /// From now on messages are dropped unseen. Any thread; a call in progress goes on.
    void StopRunning() { fRunning = false; }

    /// Called by the handler that takes or loses this observer.
    void SetOwner(zObserverHandler* owner) { fOwner = owner; }
    /// Leaves the handler. Nothing happens without one.
    void RemoveFromOwner();

  private:
    const int fID;
    std::atomic<bool> fRunning{true};
    std::atomic<zObserverHandler*> fOwner{nullptr};
};

/// A subscriber of a zObserverRouter. The count starts at 1 for its creator and is not atomic: a router and
/// its subscribers live on one handler's thread.
class zObserverRouterBase {
  public:
    zObserverRouterBase() = default;
    zObserverRouterBase(const zObserverRouterBase&) = delete;
    zObserverRouterBase& operator=(const zObserverRouterBase&) = delete;

    /// As zObserver::HandleMessage. True when the message is dealt with.
    virtual bool Call(unsigned int what, zRecord* message, zRecord* newValues, zRecord* oldValues) = 0;

    void AddRef() { ++fCount; }
    /// At 0 the object is gone.
    void Release() {
        if (--fCount == 0)
            delete this;
    }

  protected:
    virtual ~zObserverRouterBase() = default;

  private:
    int fCount = 1;
};

/// An observer that hands messages on to subscribers, each with filters of its own.
class zObserverRouter : public zObserver {
  public:
    /// As a filter: any kind, table, record or variable.
    static constexpr unsigned int kAny = 0xFFFFFFFF;

    zObserverRouter() = default;
    ~zObserverRouter() override;

    /// Calls each subscriber that a filter lets through once, in the order in which they were added; who is
    /// called is settled before the first call. When none of them returned true, handle_Default.
    void HandleMessage(unsigned int what, zRecord* message, zRecord* newValues, zRecord* oldValues) override;

    /// Takes over the caller's reference. A variable is looked for in the new values and in the old ones.
    void AddHandler(zObserverRouterBase* handler, unsigned int what, int table, int record,
                    unsigned int variable);
    /// Removes the first entry that is equal in all five, and releases its handler.
    void RemoveHandler(zObserverRouterBase* handler, unsigned int what, int table, int record,
                       unsigned int variable);
    /// Removes every entry with this table and record, and releases the handlers.
    void RemoveHandlerByRecord(int table, int record);

  protected:
    /// What nobody dealt with; does nothing here.
    virtual void handle_Default(unsigned int what, zRecord* message, zRecord* newValues, zRecord* oldValues);

  private:
    struct zObserverRouterEntry {
        zObserverRouterBase* handler;
        unsigned int what;
        unsigned int table;
        unsigned int record;
        unsigned int variable;

        bool operator==(const zObserverRouterEntry&) const = default;
        bool Applies(unsigned int kind, const zRecord& message, const zRecord* newValues,
                     const zRecord* oldValues) const;
    };

    void remove_current(zListIterator<zObserverRouterEntry*>& entries);

    zList<zObserverRouterEntry*> fEntries;
};
