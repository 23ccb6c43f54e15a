#pragma once

#include <cstdint>
#include <vector>

#include "z4CCCC.h"
#include "zBonsai.h"

/// One node of a zBonsai: its entries in one pool of bytes, with offsets in key order, and the child nodes
/// between them.
///
/// Child i holds what stands before entry i, the last child what stands behind all of them; an empty slot is
/// legal. Knows storage only; which entry goes where is the tree's business. Owns its children.
class zBonsaiNode {
  public:
    /// The slot of a node that is no child of the one that was asked.
    static constexpr unsigned short kNoSlot = 0xFFFF;

    explicit zBonsaiNode(const zBonsai* tree);
    ~zBonsaiNode();
    zBonsaiNode(const zBonsaiNode&) = delete;
    zBonsaiNode& operator=(const zBonsaiNode&) = delete;

    unsigned short Count() const { return fEntries; }
    unsigned short LastIndex() const { return static_cast<unsigned short>(fEntries - 1); }
    const unsigned char* Entry(unsigned int index) const { return fPool.data() + fOffsets[index]; }
    zBonsaiNode* Child(unsigned int slot) const { return fChildren[slot]; }
    zBonsaiNode* LastChild() const { return fChildren[fEntries]; }
    zBonsaiNode* Parent() const { return fParent; }

    /// Puts a node, or null, into a slot. What was there is neither deleted nor told.
    void SetChild(unsigned int slot, zBonsaiNode* child);
    /// Takes a child out of its slot for the caller to place or delete.
    zBonsaiNode* TakeChild(unsigned int slot);
    void DetachFromParent() { fParent = nullptr; }

    /// Inserts an entry before entry `index`. Children behind that place move up; its own slot becomes null,
    /// or with `keepChild` stays what it was.
    void AddEntry(unsigned short index, const void* entry, bool keepChild);
    /// Removes an entry and the child slot left of it; in a node with one entry the child right of it stays,
    /// in slot 0.
    void DeleteEntry(unsigned short index);
    /// Puts another entry in the place of one.
    void ReplaceEntry(unsigned short index, const void* entry);

    /// Moves the entries behind `at`, with the children right of them, to a new node.
    zBonsaiNode* Split(unsigned short at);
    /// Moves all entries and children of `other` behind this node's own and deletes it. The last child slot
    /// of this node must be free: the first child of `other` takes it.
    void Merge(zBonsaiNode* other);

    /// The slot of a child, or kNoSlot.
    unsigned short FindNodeIndex(const zBonsaiNode* child) const;

    /// Step to a neighbour in key order, through the whole tree; -1, with the position unchanged, past the
    /// ends.
    static int NextEntryInOrder(zBonsaiNode*& node, unsigned short& index);
    static int PreviousEntryInOrder(zBonsaiNode*& node, unsigned short& index);

    /// Checks this node and all below it. 0 or -1.
    int Validate() const;
    void Print(int indent) const;

  private:
    static constexpr uint32_t kMagic = z4CCCC("bonM");

    unsigned short append_bytes(const void* entry, size_t size);
    void remove_bytes(unsigned short index);
    bool entries_fill_pool() const;
    bool children_know_parent() const;

    const zBonsai* fTree;
    std::vector<zBonsaiNode*> fChildren; // one more than the order
    zBonsaiNode* fParent = nullptr;
    std::vector<unsigned short> fOffsets; // as many as the order, in key order
    std::vector<unsigned char> fPool;     // in no order; grows to the exact need and never shrinks
    unsigned short fEntries = 0;
    uint32_t fMagic = kMagic;
};
