#include "zUndo.h"

#include "zRecord.h"
#include "zResult.h"

namespace {

constexpr unsigned int kMark = z4CCCC("mark");

/// A record that was logged may have a variable `what` of its own, but such an entry has a kind.
bool is_mark(const zRecord& entry) {
    return !entry.ExistsID(zUndo::kEntryKind) && entry.As4CCCC(zRecord::kWhat, 0) == kMark;
}

} // namespace

zUndo::~zUndo() {
    MakeUndoEmpty();
    MakeRedoEmpty();
}

void zUndo::MakeUndoEmpty() {
    fUndo.RemoveAndDeleteAll();
}

void zUndo::MakeRedoEmpty() {
    fRedo.RemoveAndDeleteAll();
}

bool zUndo::is_empty(const zList<zRecord*>& stack, bool ignoreMarks) {
    for (const zRecord* entry : stack) {
        if (!ignoreMarks || !is_mark(*entry))
            return false;
    }
    return true;
}

void zUndo::Mark(int mark) {
    auto* entry = new zRecord;
    entry->Set4CCCC(zRecord::kWhat, kMark);
    entry->SetInt32(kMark, mark);
    fUndo.Prepend(entry);
}

bool zUndo::IsMarkOnTop(int mark) const {
    const zListEntry<zRecord*>* top = pop_stack().First();
    return top != nullptr && is_mark(*top->value) && (mark == 0 || top->value->AsInt32(kMark, 0) == mark);
}

void zUndo::Push(zRecord* entry) {
    if (entry != nullptr)
        PushStack().Prepend(entry);
}

void zUndo::BeginPop(zUndoType type, bool skipMark) {
    fPopState += type == kUndoType_Undo ? 1 : -1;
    bool done = false;
    if (skipMark && IsMarkOnTop(0))
        Pop(&done, 0);
}

zRecord* zUndo::Pop(bool* done, int mark) {
    if (done == nullptr)
        return nullptr;
    *done = true;
    zList<zRecord*>& from = fPopState > 0 ? fUndo : fRedo;
    while (zRecord* entry = from.RemoveFirst()) {
        if (!is_mark(*entry)) {
            *done = mark == 0;
            return entry;
        }
        PushStack().Prepend(entry);
        if (mark == 0 || entry->AsInt32(kMark, 0) == mark)
            return nullptr;
    }
    return nullptr;
}

void zUndo::EndPop(zUndoType type) {
    fPopState -= type == kUndoType_Undo ? 1 : -1;
}

// ---- The master ----

void zUndoMaster::MakeUndoEmpty() {
    for (zUndoHandler* handler : fHandlers) {
        if (zUndo* undo = handler->GetUndo())
            undo->MakeUndoEmpty();
    }
}

void zUndoMaster::MakeRedoEmpty() {
    for (zUndoHandler* handler : fHandlers) {
        if (zUndo* undo = handler->GetUndo())
            undo->MakeRedoEmpty();
    }
}

bool zUndoMaster::IsUndoEmpty(bool ignoreMarks) const {
    for (zUndoHandler* handler : fHandlers) {
        const zUndo* undo = handler->GetUndo();
        if (undo != nullptr && !undo->IsUndoEmpty(ignoreMarks))
            return false;
    }
    return true;
}

bool zUndoMaster::IsRedoEmpty(bool ignoreMarks) const {
    for (zUndoHandler* handler : fHandlers) {
        const zUndo* undo = handler->GetUndo();
        if (undo != nullptr && !undo->IsRedoEmpty(ignoreMarks))
            return false;
    }
    return true;
}

bool zUndoMaster::all_start_with_mark(zUndoType type, int mark) const {
    for (zUndoHandler* handler : fHandlers) {
        zUndo* undo = handler->GetUndo();
        if (undo == nullptr)
            continue;
        undo->BeginPop(type, false);
        const bool isOnTop = undo->IsMarkOnTop(mark);
        undo->EndPop(type);
        if (!isOnTop)
            return false;
    }
    return true;
}

void zUndoMaster::Mark(int mark) {
    if (all_start_with_mark(kUndoType_Undo, mark))
        return;
    for (zUndoHandler* handler : fHandlers) {
        if (zUndo* undo = handler->GetUndo())
            undo->Mark(mark);
    }
}

int zUndoMaster::UndoToMark(int mark) {
    const bool atMark = all_start_with_mark(kUndoType_Undo, mark);
    int last = result::kOk;
    for (zUndoHandler* handler : fHandlers)
        last = handler->UndoToMark(mark, atMark);
    return last;
}

int zUndoMaster::RedoToMark(int mark) {
    const bool atMark = all_start_with_mark(kUndoType_Redo, mark);
    int last = result::kOk;
    for (zUndoHandler* handler : fHandlers)
        last = handler->RedoToMark(mark, atMark);
    return last;
}
