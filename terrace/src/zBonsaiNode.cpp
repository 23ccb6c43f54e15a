#include "zBonsaiNode.h"

#include <algorithm>
#include <cstdio>

zBonsaiNode::zBonsaiNode(const zBonsai* tree)
    : fTree(tree), fChildren(tree->fOrder + 1u), fOffsets(tree->fOrder) {}

zBonsaiNode::~zBonsaiNode() {
    for (zBonsaiNode* child : fChildren)
        delete child;
    fMagic = 0;
}

void zBonsaiNode::SetChild(unsigned int slot, zBonsaiNode* child) {
    fChildren[slot] = child;
    if (child != nullptr)
        child->fParent = this;
}

zBonsaiNode* zBonsaiNode::TakeChild(unsigned int slot) {
    zBonsaiNode* child = fChildren[slot];
    fChildren[slot] = nullptr;
    return child;
}

unsigned short zBonsaiNode::append_bytes(const void* entry, size_t size) {
    const auto offset = static_cast<unsigned short>(fPool.size());
    const auto* bytes = static_cast<const unsigned char*>(entry);
    if (fPool.capacity() < fPool.size() + size)
        fPool.reserve(fPool.size() + size);
    fPool.insert(fPool.end(), bytes, bytes + size);
    return offset;
}

void zBonsaiNode::remove_bytes(unsigned short index) {
    const unsigned short offset = fOffsets[index];
    const unsigned int size = fTree->entry_size(Entry(index));
    fPool.erase(fPool.begin() + offset, fPool.begin() + offset + size);
    for (unsigned int i = 0; i < fEntries; ++i) {
        if (fOffsets[i] > offset)
            fOffsets[i] = static_cast<unsigned short>(fOffsets[i] - size);
    }
}

void zBonsaiNode::AddEntry(unsigned short index, const void* entry, bool keepChild) {
    index = std::min(index, fEntries);
    const unsigned short offset = append_bytes(entry, fTree->entry_size(entry));
    std::copy_backward(fOffsets.begin() + index, fOffsets.begin() + fEntries,
                       fOffsets.begin() + fEntries + 1);
    std::copy_backward(fChildren.begin() + index, fChildren.begin() + fEntries + 1,
                       fChildren.begin() + fEntries + 2);
    fOffsets[index] = offset;
    fChildren[keepChild ? index + 1u : index] = nullptr;
    ++fEntries;
}

void zBonsaiNode::DeleteEntry(unsigned short index) {
    remove_bytes(index);
    std::copy(fOffsets.begin() + index + 1, fOffsets.begin() + fEntries, fOffsets.begin() + index);
    std::copy(fChildren.begin() + index + 1, fChildren.begin() + fEntries + 1, fChildren.begin() + index);
    fChildren[fEntries] = nullptr;
    --fEntries;
}

void zBonsaiNode::ReplaceEntry(unsigned short index, const void* entry) {
    if (fTree->fStaticSize != 0) {
        std::copy_n(static_cast<const unsigned char*>(entry), fTree->fStaticSize,
                    fPool.begin() + fOffsets[index]);
        return;
    }
    remove_bytes(index);
    fOffsets[index] = append_bytes(entry, fTree->entry_size(entry));
}

zBonsaiNode* zBonsaiNode::Split(unsigned short at) {
    auto* right = new zBonsaiNode(fTree);
    right->fPool.reserve(fPool.size() / 2);
    for (unsigned int from = at + 1u; from < fEntries; ++from) {
        const unsigned int to = right->fEntries++;
        right->SetChild(to, TakeChild(from));
        right->fOffsets[to] = right->append_bytes(Entry(from), fTree->entry_size(Entry(from)));
    }
    right->SetChild(right->fEntries, TakeChild(fEntries));
    while (fEntries > at + 1u) {
        remove_bytes(LastIndex());
        --fEntries;
    }
    return right;
}

void zBonsaiNode::Merge(zBonsaiNode* other) {
    const unsigned int base = static_cast<unsigned int>(fPool.size());
    append_bytes(other->fPool.data(), other->fPool.size());
    for (unsigned int i = 0; i < other->fEntries; ++i) {
        SetChild(fEntries, other->TakeChild(i));
        fOffsets[fEntries] = static_cast<unsigned short>(base + other->fOffsets[i]);
        ++fEntries;
    }
    SetChild(fEntries, other->TakeChild(other->fEntries));
    delete other;
}

unsigned short zBonsaiNode::FindNodeIndex(const zBonsaiNode* child) const {
    for (unsigned short slot = 0; slot <= fEntries; ++slot) {
        if (fChildren[slot] == child)
            return slot;
    }
    Print(0);
    return kNoSlot;
}

int zBonsaiNode::NextEntryInOrder(zBonsaiNode*& node, unsigned short& index) {
    if (zBonsaiNode* below = node->Child(index + 1u)) {
        while (zBonsaiNode* first = below->Child(0))
            below = first;
        node = below;
        index = 0;
        return 0;
    }
    if (index + 1u < node->fEntries) {
        ++index;
        return 0;
    }
    for (zBonsaiNode *child = node, *above = node->fParent; above; child = above, above = above->fParent) {
        const unsigned short slot = above->FindNodeIndex(child);
        if (slot < above->fEntries) {
            node = above;
            index = slot;
            return 0;
        }
    }
    return -1;
}

int zBonsaiNode::PreviousEntryInOrder(zBonsaiNode*& node, unsigned short& index) {
    if (zBonsaiNode* below = node->Child(index)) {
        while (zBonsaiNode* last = below->LastChild())
            below = last;
        node = below;
        index = below->LastIndex();
        return 0;
    }
    if (index > 0) {
        --index;
        return 0;
    }
    for (zBonsaiNode *child = node, *above = node->fParent; above; child = above, above = above->fParent) {
        const unsigned short slot = above->FindNodeIndex(child);
        if (slot > 0 && slot != kNoSlot) {
            node = above;
            index = static_cast<unsigned short>(slot - 1);
            return 0;
        }
    }
    return -1;
}

bool zBonsaiNode::entries_fill_pool() const {
    size_t total = 0;
    for (unsigned int i = 0; i < fEntries; ++i) {
        if (fOffsets[i] >= fPool.size())
            return false;
        const size_t size = fTree->entry_size(Entry(i));
        if (fOffsets[i] + size > fPool.size())
            return false;
        total += size;
    }
    return total == fPool.size();
}

bool zBonsaiNode::children_know_parent() const {
    for (unsigned int slot = 0; slot < fChildren.size(); ++slot) {
        const zBonsaiNode* child = fChildren[slot];
        if (child != nullptr && (slot > fEntries || child->fParent != this))
            return false;
    }
    return true;
}

int zBonsaiNode::Validate() const {
    if (fMagic != kMagic || fEntries == 0 || fEntries > fTree->fOrder)
        return -1;
    if (!entries_fill_pool() || !children_know_parent())
        return -1;
    for (const zBonsaiNode* child : fChildren) {
        if (child != nullptr && (child->fTree != fTree || child->Validate() != 0))
            return -1;
    }
    return 0;
}

void zBonsaiNode::Print(int indent) const {
    std::printf("%*snode of %u entries, %zu bytes\n", indent, "", unsigned{fEntries}, fPool.size());
    for (unsigned int slot = 0; slot <= fEntries; ++slot) {
        if (fChildren[slot] != nullptr)
            fChildren[slot]->Print(indent + 2);
        if (slot < fEntries)
            fTree->fOki->Print(indent, const_cast<unsigned char*>(Entry(slot)));
    }
}
