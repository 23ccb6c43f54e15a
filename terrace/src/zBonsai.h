#pragma once

#include <memory>

#include "zOki.h"

class zBonsaiNode;

/// An ordered set of entries that are raw bytes, fixed or variable in size: a B-tree that stores them by
/// value in its nodes and knows them only through a zOki.
///
/// Results are 0, or -1 for a duplicate or something not found. Entries are handed out as copies: with `size`
/// given, it is the room in `result` on the way in (0 copies nothing) and the full size of the entry on the
/// way out; with `size` null, entries of fixed size are copied whole and others not at all. There is no lock.
class zBonsai {
  public:
    /// Entries of a node in all trees of the system.
    static constexpr unsigned short kOrder = 32;
    /// Bytes of entries that a node can hold, as its offsets have 16 bits.
    static constexpr unsigned int kMaxNodeBytes = 0xFFFF;

    /// Takes over `oki`. `order`, at least 2, is the most entries in a node.
    explicit zBonsai(zOki* oki, unsigned short order = kOrder);
    ~zBonsai();
    zBonsai(const zBonsai&) = delete;
    zBonsai& operator=(const zBonsai&) = delete;

    unsigned int Count() const { return fCount; }
    /// The most bytes that an entry may have, so that a full node of such entries still fits.
    unsigned int MaxEntrySize() const { return kMaxNodeBytes / fOrder; }

    /// Inserts a copy. An equal entry in the tree gives -1, or 0 with `ignoreDuplicate`, and stays as it is.
    /// An entry over MaxEntrySize gives -1.
    int Add(const void* entry, bool ignoreDuplicate);

    /// `key` is an entry whose key fields are set; `mode` goes to zOki::Compare.
    int Find(const void* key, void* result, unsigned short* size, int mode) const;

    /// Finds and removes; `result` gets the old bytes.
    int Delete(const void* key, void* result, unsigned short* size, int mode);
    void DeleteAll();

    /// Starts a walk over all entries that equal `key` in `mode`, in order. The key must stay alive and the
    /// tree unchanged until the cursor is given to _End. -1 and a null cursor when none matches.
    int FindByPartialKey_Start(void** cursor, const void* key, int mode) const;
    /// Hands out the next match, -1 behind the last one.
    int FindByPartialKey_Next(void* cursor, void* result, unsigned short* size) const;
    void FindByPartialKey_End(void* cursor) const;

    /// Calls `visit` in key order until it returns non-zero, which becomes the result. It must keep keys as
    /// they are.
    int InOrderWalk(int (*visit)(void* entry, void* arg), void* arg) const;

    /// The entry at a position of the key order; linear in `index`.
    int EntryByIndex(int index, void* result, unsigned short* size) const;

    /// The first entry at or behind position `start` that zOki::Search agrees to. `*index`, if not null, gets
    /// the position where the walk stopped.
    int Search(int start, int what, const void* key, void* result, unsigned short* size, int* index) const;

    /// A copy of an entry in a block of its own, to be released with delete[].
    unsigned char* DuplicateEntry(const void* entry) const;

    /// Checks every node, the key order and the count. 0, or -1 for a damaged tree.
    int Validate() const;
    void Print() const;

  private:
    friend class zBonsaiNode;

    struct Position {
        zBonsaiNode* node;
        unsigned short index;
    };

    int DoFind(const void* key, Position& position, int mode) const;
    void DoInsertIntoNode(zBonsaiNode* node, unsigned short index, const void* entry,
                          zBonsaiNode* rightChild);
    void split_and_insert(zBonsaiNode* node, unsigned short index, const void* entry,
                          zBonsaiNode* rightChild);
    void DeleteEntryAt(zBonsaiNode* node, unsigned short index);
    void HandleUnderflow(zBonsaiNode* node);
    void rotate_right(zBonsaiNode* parent, unsigned short slot);
    void rotate_left(zBonsaiNode* parent, unsigned short slot);
    bool merge_children(zBonsaiNode* parent, unsigned short leftSlot);

    unsigned int entry_size(const void* entry) const {
        return fStaticSize != 0 ? fStaticSize : fOki->EntrySize(entry);
    }
    void copy_out(const void* entry, void* result, unsigned short* size) const;

    std::unique_ptr<zOki> fOki;
    zBonsaiNode* fRoot = nullptr;
    unsigned int fCount = 0;
    unsigned short fOrder;
    unsigned short fMinimum;  // fewer entries in a node below the root are an underflow
    unsigned int fStaticSize; // 0 when entries vary in size
};
