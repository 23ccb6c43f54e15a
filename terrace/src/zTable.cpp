#include "zTable.h"

#include "zIDGenerator.h"
#include "zObserverHandler.h"
#include "zResult.h"
#include "zUndo.h"

namespace {

using RecordOki = zOki_idt<zRecord*, int>;

int new_id(char kind) {
    return static_cast<int>(zIDGenerator::Generate(kind));
}

} // namespace

zTable::zTable(const char* name, unsigned int flags, zRecord* root)
    : fName(name),
      fID(new_id('t')),
      fFlags(flags),
      fRecords(new RecordOki),
      fIndex((flags & kKeepIndex) != 0 ? std::make_unique<zIndex<zRecord*>>() : nullptr),
      fRoot(root != nullptr ? root : new zRecord) {
    const zAutoCriticalWrite lock(&fLock);
    fRoot->fTable = this;
    add_record_to_table(fRoot);
    for (zRecord* child : fRoot->Children())
        child->recurse_add_child(this);
}

zTable::~zTable() {
    // Nobody wants to hear of, or to undo, what happens from here on.
    fObservers = {};
    fFlags &= ~kKeepUndo;
    const zAutoCriticalWrite lock(&fLock);
    delete fRoot;
}

// ---- Records ----

int zTable::InsertRecord(zRecord* record, unsigned int* slot) {
    const int id = fRoot->AddChild(record);
    if (slot != nullptr)
        *slot = RecordIndex(record);
    return id;
}

int zTable::RemoveRecord(int id) {
    const std::unique_ptr<zRecord> record(RemoveReturnRecord(id));
    return record ? result::kOk : result::kFailure;
}

zRecord* zTable::RemoveReturnRecord(int id) {
    zRecord* record = find_record(id, kNoSlot);
    if (record == nullptr || record == fRoot)
        return nullptr;
    return record->Parent()->RemoveChildPtr(record);
}

zRecord* zTable::find_record(int id, unsigned int slot) const {
    if (slot != kNoSlot && fIndex)
        return index_find(id, slot);
    RecordOki::Entry entry{id, nullptr};
    return fRecords.Find(&entry, &entry, nullptr, 0) == 0 ? entry.value : nullptr;
}

int zTable::CountChildren(int id) const {
    const zRecord* record = GetRecord(id);
    return record != nullptr ? record->ChildCount() : 0;
}

int zTable::ChildAt(int id, unsigned int n) const {
    const zRecord* record = GetRecord(id);
    const zRecord* child = record != nullptr ? record->Child(n) : nullptr;
    return child != nullptr ? child->RecordID() : 0;
}

int zTable::Msg_RecordID(const zRecord* message) {
    return message != nullptr ? message->RecordID() : 0;
}

unsigned int zTable::RecordIndex(const zRecord* record) {
    return record != nullptr ? record->AsUInt32(zRecord::kRecIndex, kNoSlot) : kNoSlot;
}

int zTable::Validate(const zRecord* record, unsigned int* count) const {
    unsigned int counted = 0;
    if (record == nullptr) {
        const int walked = Validate(fRoot, &counted);
        if (count != nullptr)
            *count = counted;
        return walked == result::kOk && counted == TotalRecordCount() ? result::kOk : result::kFailure;
    }
    if (count == nullptr)
        count = &counted;
    ++*count;
    if (GetRecord(record->RecordID()) != record)
        return result::kFailure;
    for (const zRecord* child : record->Children()) {
        if (child->Parent() != record || Validate(child, count) != result::kOk)
            return result::kFailure;
    }
    return result::kOk;
}

// ---- Coming and going ----

/// The record's id, 0 where the id is taken.
int zTable::add_record_to_table(zRecord* record) {
    if (!enter_in_records(record))
        return 0;
    const int id = record->RecordID();
    index_add(record);
    if (IsUndoAble())
        undo_push_rec_added(id);
    notify_of_record(kRecordNew, id);
    return id;
}

/// A record comes with the id that it had once, so that undo can give it back, or gets a new one.
bool zTable::enter_in_records(zRecord* record) {
    if (record->RecordID() != 0) {
        const RecordOki::Entry entry{record->RecordID(), record};
        return fRecords.Add(&entry, false) == 0;
    }
    RecordOki::Entry entry{0, record};
    do
        entry.key = new_id('d');
    while (fRecords.Add(&entry, false) != 0); // someone may have chosen an id
    record->set_id(entry.key);
    return true;
}

/// Takes out a record that still has its place under its parent, and all below.
void zTable::remove_record_from_table(zRecord* record) {
    const zRecord* parent = record->Parent();
    leave(record, IsUndoAble() && parent != nullptr ? parent->FindIndexOfChild(record) : -1);
}

void zTable::leave(zRecord* record, int index) {
    int childIndex = record->ChildCount();
    for (const auto* child = record->Children().Last(); child != nullptr; child = child->Previous())
        leave(child->value, --childIndex);
    record->fTable = nullptr;
    const int id = record->RecordID();
    if (find_record(id, kNoSlot) != record)
        return; // it never came in
    if (IsUndoAble())
        undo_push_rec_deleted(*record, index);
    fRecords.Delete(&id, nullptr, nullptr, 0);
    index_rm(record);
    notify_of_record(kRecordDeleted, id);
}

// ---- Slots: a record keeps its own as a variable, which is neither undone nor told ----

void zTable::index_add(zRecord* record) {
    if (fIndex)
        record->FindOrAdd(zRecord::kRecIndex)->SetUInt32(zRecord::kRecIndex, fIndex->Add(record));
}

void zTable::index_rm(zRecord* record) {
    if (!fIndex)
        return;
    unsigned int slot = RecordIndex(record);
    if ((*fIndex)[slot] != record)
        slot = fIndex->SlotOf(record); // the variable was changed or removed
    fIndex->Remove(slot);
    record->remove_variable(zRecord::kRecIndex);
}

/// Null for a slot that by now holds another record.
zRecord* zTable::index_find(int id, unsigned int slot) const {
    zRecord* record = (*fIndex)[slot];
    return record != nullptr && record->RecordID() == id ? record : nullptr;
}

// ---- Observers ----

int zTable::Observe(int observer, int record, unsigned int variable) {
    fIsFollowed = true;
    return fObservers.Add(observer, record, variable);
}

int zTable::StopObserving(int observer, int record, unsigned int variable) {
    return fObservers.Remove(observer, record, variable);
}

void zTable::notify_of_record(unsigned int what, int record) {
    if (!has_observers(zTableObservers::kAny, zTableObservers::kAnyVariable))
        return;
    zRecord message;
    message.Set4CCCC(zRecord::kWhat, what);
    message.SetInt32(zRecord::kTableID, fID);
    message.set_id(record);
    deliver_record_notify(message, record);
}

/// Posts a copy to everyone whom a message about a record concerns.
void zTable::deliver_record_notify(const zRecord& message, int record) {
    zTableObservers::IDs observers;
    fObservers.FindAll(observers);
    for (const zVariable* variable : message.Variables())
        fObservers.Find(observers, record, variable->ID());
    if (const zRecord* newValues = message.Child(0)) {
        for (const zVariable* variable : newValues->Variables())
            fObservers.Find(observers, record, variable->ID());
    }
    fObservers.Find(observers, record, 0);
    for (const int observer : observers)
        zObserverHandler::PostNotification(observer, new zRecord(message), 0);
}
