#pragma once

#include "z4CCCC.h"
#include "zList.h"

class zRecord;

enum zUndoType : unsigned int { kUndoType_Undo = z4CCCC("undo"), kUndoType_Redo = z4CCCC("redo") };

/// Two stacks of entries, each of which says how to reverse one change; what exactly, only its pusher knows.
///
/// Entries are reversed between BeginPop and EndPop. Whatever is pushed meanwhile goes to the other stack, so
/// that a reversal, made by ordinary changes, can itself be reversed. Marks, numbers from 1, stand between
/// entries. A new change leaves the redo stack as it is: who offers redo empties it then. No lock.
class zUndo {
  public:
    /// What an entry does, in entries that are no marks.
    static constexpr unsigned int kEntryKind = z4CCCC("%tid");

    zUndo() = default;
    ~zUndo();

    void MakeUndoEmpty();
    void MakeRedoEmpty();
    /// With `ignoreMarks`, true for a stack of marks alone.
    bool IsUndoEmpty(bool ignoreMarks) const { return is_empty(fUndo, ignoreMarks); }
    bool IsRedoEmpty(bool ignoreMarks) const { return is_empty(fRedo, ignoreMarks); }

    /// Puts a mark on the undo stack.
    void Mark(int mark);
    /// Whether the next thing to be popped is this mark; 0 stands for any.
    bool IsMarkOnTop(int mark) const;

    /// Takes over an entry.
    void Push(zRecord* entry);
    /// Where Push puts entries now.
    zList<zRecord*>& PushStack() { return fPopState > 0 ? fRedo : fUndo; }
    zList<zRecord*>& UndoStack() { return fUndo; }

    /// From here on Pop reads the stack of `type`. With `skipMark` a mark on top of it is moved over, so that
    /// going to the same mark twice gets further.
    void BeginPop(zUndoType type, bool skipMark);
    /// The next entry, which is the caller's, or null at a mark and at the end. Going to mark 0 means one
    /// entry: `*done` becomes true with it. Going to another means all entries down to that mark. The marks
    /// on the way change over to the other stack.
    zRecord* Pop(bool* done, int mark);
    void EndPop(zUndoType type);
    bool IsPopping() const { return fPopState != 0; }

  private:
    static bool is_empty(const zList<zRecord*>& stack, bool ignoreMarks);
    const zList<zRecord*>& pop_stack() const { return fPopState > 0 ? fUndo : fRedo; }

    int fPopState = 0; // above 0 while undoing, below while redoing
    zList<zRecord*> fUndo;
    zList<zRecord*> fRedo;
};

/// Something whose changes a zUndoMaster undoes together with others'.
class zUndoHandler {
  public:
    virtual ~zUndoHandler() = default;

    /// Null as long as there is nothing to undo.
    virtual zUndo* GetUndo() = 0;
    /// Goes back to a mark. `atMark` says that everyone stands at that mark already, and so should go to the
    /// one before; otherwise who stands there stays.
    virtual int UndoToMark(int mark, bool atMark) = 0;
    virtual int RedoToMark(int mark, bool atMark) = 0;
};

/// Undoes the changes of several owners together, by marks that all of them get. It owns none of them. No
/// lock.
class zUndoMaster {
  public:
    void AddHandler(zUndoHandler* handler) { fHandlers.Append(handler); }
    void RemoveHandler(zUndoHandler* handler) { fHandlers.Remove(handler); }
    void RemoveAllHandlers() { fHandlers.RemoveAll(); }

    void MakeUndoEmpty();
    void MakeRedoEmpty();
    /// True when nobody has anything to undo.
    bool IsUndoEmpty(bool ignoreMarks) const;
    bool IsRedoEmpty(bool ignoreMarks) const;

    /// Marks everyone's changes, unless all stand at this mark already.
    void Mark(int mark);
    /// The result of the last handler, 0 without one.
    int UndoToMark(int mark);
    int RedoToMark(int mark);

  private:
    bool all_start_with_mark(zUndoType type, int mark) const;

    zList<zUndoHandler*> fHandlers;
};
