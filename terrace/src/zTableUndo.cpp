#include <memory>

#include "zResult.h"
#include "zTable.h"
#include "zUndo.h"

namespace {

// Kinds of an entry. Each has the id of the record that it is about as its own.
constexpr unsigned int kEntry_RecordAdded = z4CCCC("+rec");
constexpr unsigned int kEntry_RecordDeleted = z4CCCC("-rec");   // is the record, with its place in the tree
constexpr unsigned int kEntry_VariableAdded = z4CCCC("+var");   // holds a variable with the id
constexpr unsigned int kEntry_VariableChanged = z4CCCC("~var"); // holds the variable as it was
constexpr unsigned int kEntry_VariableDeleted = z4CCCC("-var"); // so does this

// The place of a deleted record.
constexpr unsigned int kParentID = z4CCCC("%tID");
constexpr unsigned int kChildIndex = z4CCCC("%t[]");

/// The variable that an entry is about.
const zVariable* variable_of(const zRecord& entry) {
    for (const zVariable* variable : entry.Variables()) {
        if (variable->ID() != zUndo::kEntryKind)
            return variable;
    }
    return nullptr;
}

} // namespace

// ---- Logging ----

void zTable::undo_push(zRecord* entry, int record, unsigned int kind) {
    entry->set_id(record);
    entry->Set4CCCC(zUndo::kEntryKind, kind);
    if (!fUndo)
        fUndo = std::make_unique<zUndo>();
    fUndo->Push(entry);
}

void zTable::undo_push_rec_added(int record) {
    undo_push(new zRecord, record, kEntry_RecordAdded);
}

void zTable::undo_push_rec_deleted(const zRecord& record, int index) {
    auto* entry = new zRecord;
    entry->copy_record_not_children(record, true);
    entry->SetInt32(kParentID, record.Parent() != nullptr ? record.Parent()->RecordID() : 0);
    entry->SetInt32(kChildIndex, index);
    undo_push(entry, record.RecordID(), kEntry_RecordDeleted);
}

void zTable::undo_push_var_add(int record, unsigned int variable) {
    auto* entry = new zRecord;
    entry->SetInt32(variable, 0);
    undo_push(entry, record, kEntry_VariableAdded);
}

void zTable::undo_push_var_change(int record, const zVariable& variable) {
    auto* entry = new zRecord;
    entry->VariablePutOne(variable);
    undo_push(entry, record, kEntry_VariableChanged);
}

void zTable::undo_push_var_deleted(int record, const zVariable& variable) {
    auto* entry = new zRecord;
    entry->VariablePutOne(variable);
    undo_push(entry, record, kEntry_VariableDeleted);
}

// ---- Reversing ----

int zTable::Undo(int mark) {
    return undo_or_redo(kUndoType_Undo, mark);
}

int zTable::Redo(int mark) {
    return undo_or_redo(kUndoType_Redo, mark);
}

int zTable::undo_or_redo(zUndoType type, int mark) {
    if (!fUndo)
        return result::kOk;
    fUndo->BeginPop(type, true);
    bool done = false;
    while (undo_reverse_affect(fUndo->Pop(&done, mark)) > 0 && !done) {
    }
    fUndo->EndPop(type);
    return result::kOk;
}

/// Takes over an entry and reverses its change by ordinary changes, which are logged in turn. 0 for null, at
/// the end of the way, else 1.
int zTable::undo_reverse_affect(zRecord* popped) {
    if (popped == nullptr)
        return 0;
    std::unique_ptr<zRecord> entry(popped);
    const unsigned int kind = entry->As4CCCC(zUndo::kEntryKind, 0);
    if (kind == kEntry_RecordAdded) {
        RemoveRecord(entry->RecordID());
        return 1;
    }
    if (kind == kEntry_RecordDeleted) {
        restore_record(std::move(entry));
        return 1;
    }
    zRecord* record = GetRecord(entry->RecordID());
    const zVariable* variable = variable_of(*entry);
    if (record == nullptr || variable == nullptr)
        return 1;
    if (kind == kEntry_VariableAdded)
        record->RemoveID(variable->ID());
    else if (kind == kEntry_VariableChanged || kind == kEntry_VariableDeleted)
        record->VariablePutOne(*variable);
    return 1;
}

/// The entry itself comes back as the record. Its children have entries of their own.
void zTable::restore_record(std::unique_ptr<zRecord> entry) {
    zRecord* parent = GetRecord(entry->AsInt32(kParentID, 0));
    const int index = entry->AsInt32(kChildIndex, -1);
    if (parent == nullptr)
        return;
    for (const unsigned int id : {kParentID, kChildIndex, zUndo::kEntryKind})
        entry->RemoveID(id);
    parent->AddChild(entry.release(), index);
}

int zTable::Mark(int mark) {
    if (fUndo)
        fUndo->Mark(mark);
    return result::kOk;
}

void zTable::MakeUndoEmpty() {
    if (fUndo)
        fUndo->MakeUndoEmpty();
}

void zTable::MakeRedoEmpty() {
    if (fUndo)
        fUndo->MakeRedoEmpty();
}
