#pragma once

#include <memory>

#include "zBonsai.h"
#include "zCriticalRW.h"
#include "zIndex.h"
#include "zRecord.h"
#include "zString.h"
#include "zTableObservers.h"

class zUndo;
enum zUndoType : unsigned int;

/// A tree of records as a small database: every record under the root has an id by which it is found,
/// observers are told of changes, and, if asked for, each change can be undone.
///
/// Users work with the calls of zRecord: what is added anywhere under the root is in the table, and what is
/// taken out has left it, with all below; it keeps its ids for the way back. The lock is advisory: users
/// bracket with LockRead and LockWrite whatever they do with the table and its records, and only construction
/// and destruction take it on their own. Observers get copies, on their handlers' threads.
class zTable {
  public:
    // Flags.
    static constexpr unsigned int kKeepUndo = 1;
    static constexpr unsigned int kKeepIndex = 2; ///< For tables that are mostly looked up by slot.

    /// No slot, for GetRecord and from RecordIndex.
    static constexpr unsigned int kNoSlot = 0x80000000;

    // Kinds of a message.
    static constexpr unsigned int kRecordModified = z4CCCC("Rmod");
    static constexpr unsigned int kRecordNew = z4CCCC("Rnew");
    static constexpr unsigned int kRecordDeleted = z4CCCC("Rdel");

    /// Takes over `root`, a free record, and all below; null stands for an empty one.
    zTable(const char* name, unsigned int flags, zRecord* root);
    /// Deletes the records. Nobody may hold the lock or wait for it.
    ~zTable();
    zTable(const zTable&) = delete;
    zTable& operator=(const zTable&) = delete;

    const char* TableName() const { return fName; }
    int TableID() const { return fID; }
    zRecord* Root() const { return fRoot; }
    int RootID() const { return fRoot->RecordID(); }

    /// Takes over the record and puts it behind the root's children. Returns its id, 0 for null; `slot`, if
    /// not null, gets its slot.
    int InsertRecord(zRecord* record, unsigned int* slot = nullptr);
    /// Deletes a record and all below. -1 for the root and for an unknown id.
    int RemoveRecord(int id);
    /// As RemoveRecord, but the record is the caller's. Null instead of -1.
    zRecord* RemoveReturnRecord(int id);

    /// The record, or null. With a slot, the record's RecordIndex, the search costs nothing; a stale slot
    /// gives null.
    zRecord* GetRecord(int id, unsigned int slot = kNoSlot) { return find_record(id, slot); }
    const zRecord* GetRecord(int id, unsigned int slot = kNoSlot) const { return find_record(id, slot); }

    /// 0 for an unknown id.
    int CountChildren(int id) const;
    /// The id of the n-th child, or 0.
    int ChildAt(int id, unsigned int n) const;
    /// All records, the root included.
    unsigned int TotalRecordCount() const { return fRecords.Count(); }

    /// The record that a message is about.
    static int Msg_RecordID(const zRecord* message);
    /// The slot of a record, kNoSlot outside of an index.
    static unsigned int RecordIndex(const zRecord* record);

    void LockRead() { fLock.LockRead(false); }
    void UnlockRead() { fLock.UnlockRead(); }
    void LockWrite() { fLock.LockWrite(false); }
    void UnlockWrite() { fLock.UnlockWrite(); }
    bool IsReadLocked() const { return fLock.ReaderCount() != 0; }
    bool IsWriteLocked() const { return fLock.WriterCount() != 0; }
    void DebugRWLock(bool on) { fLock.DebugThisLocker(on); }
    /// For the scope guards zAutoCriticalRead and zAutoCriticalWrite.
    zCriticalRW* Lock() { return &fLock; }

    /// Subscribes an observer, by its id, to changes of a record and a variable; -1 stands for any. Always 0.
    /// Deliberate: records that come and go are told only while someone watches everything, and then to the
    /// watchers of that record as well; a table watched in places pays nothing for them.
    int Observe(int observer, int record, unsigned int variable);
    /// Ends what Observe began with the same values. -1 where there was no such entry.
    int StopObserving(int observer, int record, unsigned int variable);

    // Undo: see zUndo for what marks mean. These do nothing as long as nothing was logged, and give 0.

    bool IsUndoAble() const { return (fFlags & kKeepUndo) != 0; }
    /// Reverses the changes up to a mark; with 0, one change.
    int Undo(int mark);
    /// Makes undone changes again, up to a mark; with 0, one.
    int Redo(int mark);
    int Mark(int mark);
    void MakeUndoEmpty();
    void MakeRedoEmpty();
    /// Owned by the table; null as long as nothing was logged.
    zUndo* GetUndo() const { return fUndo.get(); }

    /// Whether each record below `record`, which is counted in `*count`, is found by its id and knows its
    /// parent. With null: whether this is so for the whole table, and no other record is in it. 0 or -1.
    int Validate(const zRecord* record = nullptr, unsigned int* count = nullptr) const;
    void Print() const { fRoot->Print(0, 0); }

  private:
    friend class zRecord;

    int add_record_to_table(zRecord* record);
    void remove_record_from_table(zRecord* record);
    /// Whether a change of a variable has to be looked at at all: every setter asks that.
    bool is_followed() const { return fIsFollowed; }
    bool has_observers(int record, unsigned int variable) const { return fObservers.Has(record, variable); }
    void deliver_record_notify(const zRecord& message, int record);

    void undo_push_rec_added(int record);
    void undo_push_rec_deleted(const zRecord& record, int index);
    void undo_push_var_add(int record, unsigned int variable);
    void undo_push_var_change(int record, const zVariable& variable);
    void undo_push_var_deleted(int record, const zVariable& variable);
    void undo_push(zRecord* entry, int record, unsigned int kind);
    int undo_or_redo(zUndoType type, int mark);
    int undo_reverse_affect(zRecord* popped);
    void restore_record(std::unique_ptr<zRecord> entry);

    bool enter_in_records(zRecord* record);
    void leave(zRecord* record, int index);
    zRecord* find_record(int id, unsigned int slot) const;
    zRecord* index_find(int id, unsigned int slot) const;
    void index_add(zRecord* record);
    void index_rm(zRecord* record);
    void notify_of_record(unsigned int what, int record);

    const zString fName;
    const int fID;
    unsigned int fFlags;
    bool fIsFollowed = IsUndoAble(); ///< By undo, or by an observer now or once.
    zCriticalRW fLock;
    zBonsai fRecords; ///< From id to record.
    std::unique_ptr<zIndex<zRecord*>> fIndex;
    zTableObservers fObservers;
    std::unique_ptr<zUndo> fUndo; ///< Made when the first change is logged.
    zRecord* fRoot;
};
