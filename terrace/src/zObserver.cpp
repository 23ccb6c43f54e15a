#include "zObserver.h"

#include <algorithm>
#include <vector>

#include "zIDGenerator.h"
#include "zObserverHandler.h"
#include "zRecord.h"

zObserver::zObserver() : fID(static_cast<int>(zIDGenerator::Generate('o'))) {}

zObserver::~zObserver() {
    RemoveFromOwner();
}

void zObserver::RemoveFromOwner() {
    if (zObserverHandler* owner = fOwner)
        owner->RemoveObserver(fID);
}

// ---- The router ----

namespace {

bool lets_through(unsigned int filter, unsigned int value) {
    return filter == zObserverRouter::kAny || filter == value;
}

bool holds(const zRecord* values, unsigned int variable) {
    return values != nullptr && values->ExistsID(variable);
}

} // namespace

zObserverRouter::~zObserverRouter() {
    zListIterator entries(fEntries);
    while (entries.Next())
        remove_current(entries);
}

bool zObserverRouter::zObserverRouterEntry::Applies(unsigned int kind, const zRecord& message,
                                                    const zRecord* newValues,
                                                    const zRecord* oldValues) const {
    return lets_through(what, kind) && lets_through(table, message.AsUInt32(zRecord::kTableID, 0)) &&
           lets_through(record, static_cast<unsigned int>(message.RecordID())) &&
           (variable == kAny || holds(newValues, variable) || holds(oldValues, variable));
}

void zObserverRouter::HandleMessage(unsigned int what, zRecord* message, zRecord* newValues,
                                    zRecord* oldValues) {
    // A subscriber may remove itself or others while it is called.
    std::vector<zObserverRouterBase*> handlers;
    for (const zObserverRouterEntry* entry : fEntries) {
        if (!entry->Applies(what, *message, newValues, oldValues))
            continue;
        if (std::find(handlers.begin(), handlers.end(), entry->handler) != handlers.end())
            continue;
        entry->handler->AddRef();
        handlers.push_back(entry->handler);
    }
    bool isDealtWith = false;
    for (zObserverRouterBase* handler : handlers) {
        isDealtWith |= handler->Call(what, message, newValues, oldValues);
        handler->Release();
    }
    if (!isDealtWith)
        handle_Default(what, message, newValues, oldValues);
}

void zObserverRouter::handle_Default(unsigned int, zRecord*, zRecord*, zRecord*) {}

void zObserverRouter::AddHandler(zObserverRouterBase* handler, unsigned int what, int table, int record,
                                 unsigned int variable) {
    if (handler == nullptr)
        return;
    fEntries.Append(new zObserverRouterEntry{handler, what, static_cast<unsigned int>(table),
                                             static_cast<unsigned int>(record), variable});
}

void zObserverRouter::RemoveHandler(zObserverRouterBase* handler, unsigned int what, int table, int record,
                                    unsigned int variable) {
    const zObserverRouterEntry wanted{handler, what, static_cast<unsigned int>(table),
                                      static_cast<unsigned int>(record), variable};
    zListIterator entries(fEntries);
    while (entries.Next()) {
        if (*entries.Current() == wanted)
            return remove_current(entries);
    }
}

void zObserverRouter::RemoveHandlerByRecord(int table, int record) {
    zListIterator entries(fEntries);
    while (entries.Next()) {
        if (entries.Current()->table == static_cast<unsigned int>(table) &&
            entries.Current()->record == static_cast<unsigned int>(record))
            remove_current(entries);
    }
}

void zObserverRouter::remove_current(zListIterator<zObserverRouterEntry*>& entries) {
    const zObserverRouterEntry* entry = entries.Current();
    entries.RmCurrent();
    entry->handler->Release();
    delete entry;
}
