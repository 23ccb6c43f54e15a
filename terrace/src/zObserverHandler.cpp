#include "zObserverHandler.h"

#include <thread>
#include <utility>

#include "zBonsai.h"
#include "zBoot.h"
#include "zCriticalRW.h"
#include "zObserver.h"
#include "zRecord.h"
#include "zResult.h"
#include "zTerrace.h"

/// What the fast look-up holds for an observer's id.
struct zObserverHandler::_observer_lu {
    zObserverHandler* handler;
    zObserver* observer;
};

namespace {

zBootIncludeModule gInclude(zTerrace::boot_Module);

std::atomic<zObserverHandler*> gObserverHandler{nullptr};

/// A kind is a four-character text in the library's own messages; others may give a number.
unsigned int kind_of(const zRecord& message) {
    if (message.VariableTypeByID(zRecord::kWhat) == zVariable::kCString)
        return message.As4CCCC(zRecord::kWhat, 0);
    return message.AsUInt32(zRecord::kWhat, 0);
}

} // namespace

std::unique_ptr<zBonsai> zObserverHandler::fFastLookup;
std::unique_ptr<zCriticalRW> zObserverHandler::fFastCriticalRW;

void zObserverHandler::Startup() {
    fFastCriticalRW = std::make_unique<zCriticalRW>();
    fFastLookup = std::make_unique<zBonsai>(new LookupOki);
}

void zObserverHandler::Shutdown() {
    fFastLookup.reset();
    fFastCriticalRW.reset();
}

zObserverHandler::zObserverHandler(const char* name)
    : fName(name), fCritical(zCritical::Factory(1)), fSignal(zSignal::Factory()) {}

zObserverHandler::~zObserverHandler() {
    Stop();
    let_go_of_observers();
    fMessages.RemoveAndDeleteAll();
    zObserverHandler* self = this;
    gObserverHandler.compare_exchange_strong(self, nullptr);
}

// ---- The thread ----

int zObserverHandler::Run(const char* name) {
    if (fThread || !fRunning)
        return result::kFailure;
    const char* shown = name != nullptr ? name : static_cast<const char*>(fName);
    fThread.reset(zThread::Factory(shown, this, zThread::kWaitForStart, zThread::kNormalPriority));
    return fThread ? result::kOk : result::kFailure;
}

void zObserverHandler::Stop() {
    if (fThreadID == zThread::CurrentThreadID()) {
        fRunning = false;
    } else if (fThread) {
        fRunning = false;
        fSignal->Signal();
        fThread->WaitForExit();
        fThread.reset();
    }
}

int zObserverHandler::Main(int, const char**) {
    fThreadID = zThread::CurrentThreadID();
    while (fRunning) {
        fSignal->Wait();
        if (fRunning)
            ObserveOneMessage();
    }
    return result::kOk;
}

void zObserverHandler::SignalQueue() {
    fSignal->Signal();
}

int zObserverHandler::ObserveOneMessage() {
    std::unique_ptr<zRecord> message;
    {
        const zAutoCritical lock(fCritical.get());
        message.reset(fMessages.RemoveFirst());
    }
    if (!message)
        return result::kFailure;
    _observer_lu found;
    if (find_observer(message->AsInt32(zRecord::kObserverID, 0), found) && found.observer->IsRunning())
        found.observer->HandleMessage(kind_of(*message), message.get(), message->Child(0), message->Child(1));
    return result::kOk;
}

// ---- Observers ----

bool zObserverHandler::find_observer(int id, _observer_lu& found) {
    if (!fFastLookup)
        return false;
    LookupOki::Entry entry{id, {}};
    const zAutoCriticalRead lock(fFastCriticalRW.get());
    if (fFastLookup->Find(&entry, &entry, nullptr, 0) != 0)
        return false;
    found = entry.value;
    return true;
}

int zObserverHandler::AddObserver(zObserver* observer) {
    _observer_lu found;
    if (observer == nullptr || !fFastLookup || find_observer(observer->ObserverID(), found))
        return result::kFailure;
    observer->SetOwner(this);
    // First the list: once it can be found, a message may come, on which it may remove itself.
    {
        const zAutoCritical lock(fCritical.get());
        fObservers.Append(observer);
    }
    const LookupOki::Entry entry{observer->ObserverID(), {this, observer}};
    int error;
    {
        const zAutoCriticalWrite lock(fFastCriticalRW.get());
        error = fFastLookup->Add(&entry, false);
    }
    if (error != 0) { // Another thread has added one of that id meanwhile.
        const zAutoCritical lock(fCritical.get());
        fObservers.Remove(observer);
    }
    return error;
}

void zObserverHandler::RemoveObserver(int id) {
    _observer_lu found;
    if (!find_observer(id, found) || found.handler != this)
        return;
    take_out_of_lookup(id);
    remove_observer_from_messages(id);
    const zAutoCritical lock(fCritical.get());
    if (fObservers.Remove(found.observer))
        found.observer->SetOwner(nullptr);
}

void zObserverHandler::take_out_of_lookup(int id) {
    if (!fFastLookup)
        return;
    const zAutoCriticalWrite lock(fFastCriticalRW.get());
    fFastLookup->Delete(&id, nullptr, nullptr, 0);
}

void zObserverHandler::remove_observer_from_messages(int id) {
    const zAutoCritical lock(fCritical.get());
    zListIterator messages(fMessages);
    while (messages.Next()) {
        zRecord* message = messages.Current();
        if (message->AsInt32(zRecord::kObserverID, 0) != id)
            continue;
        messages.RmCurrent();
        delete message;
    }
}

void zObserverHandler::let_go_of_observers() {
    const auto take = [this] {
        const zAutoCritical lock(fCritical.get());
        return fObservers.RemoveFirst();
    };
    while (zObserver* observer = take()) {
        take_out_of_lookup(observer->ObserverID());
        observer->SetOwner(nullptr);
    }
    // Whoever found an observer of this handler a moment ago may still be appending.
    while (fPosters != 0)
        std::this_thread::yield();
}

// ---- Posting ----

/// The handler of an observer, kept alive until the caller counts itself out of fPosters; or null.
zObserverHandler* zObserverHandler::begin_post(int observer) {
    if (!fFastLookup)
        return nullptr;
    LookupOki::Entry entry{observer, {}};
    const zAutoCriticalRead lock(fFastCriticalRW.get());
    if (fFastLookup->Find(&entry, &entry, nullptr, 0) != 0)
        return nullptr;
    ++entry.value.handler->fPosters;
    return entry.value.handler;
}

int zObserverHandler::PostNotification(int observer, zRecord* message, unsigned int replaceKey) {
    if (message == nullptr)
        return result::kFailure;
    zObserverHandler* handler = begin_post(observer);
    if (handler == nullptr) {
        delete message;
        return result::kFailure;
    }
    handler->push_notification(observer, message, replaceKey);
    --handler->fPosters;
    return result::kOk;
}

void zObserverHandler::push_notification(int observer, zRecord* message, unsigned int replaceKey) {
    message->SetInt32(zRecord::kObserverID, observer);
    // The signal of a message that was replaced is still counted.
    if (append_or_replace(message, replaceKey))
        SignalQueue();
}

/// True when the queue has become longer.
bool zObserverHandler::append_or_replace(zRecord* message, unsigned int replaceKey) {
    const zAutoCritical lock(fCritical.get());
    if (replaceKey != 0 && !fMessages.IsEmpty()) {
        zListEntry<zRecord*>* last = fMessages.Last();
        if (last->value->VariableCompare(*message, replaceKey) == 0) {
            delete std::exchange(last->value, message);
            return false;
        }
    }
    fMessages.Append(message);
    return true;
}

// ---- The main thread's handler ----

void zObserverHandler::SetMainThreadObseverHandler(zObserverHandler* handler) {
    gObserverHandler = handler;
}

zObserverHandler* zObserverHandler::MainThreadObserverHandler() {
    return gObserverHandler;
}

bool zObserverHandler::AddObserverToMainThreadHandler(zObserver* observer) {
    zObserverHandler* handler = gObserverHandler;
    return handler != nullptr && handler->AddObserver(observer) == result::kOk;
}

bool zObserverHandler::RemoveObserverFromMainThreadHandler(int id) {
    zObserverHandler* handler = gObserverHandler;
    if (handler != nullptr)
        handler->RemoveObserver(id);
    return handler != nullptr;
}
