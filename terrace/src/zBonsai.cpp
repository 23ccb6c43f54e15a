#include "zBonsai.h"

#include <algorithm>
#include <cstdio>

#include "zBonsaiNode.h"

namespace {

/// What FindByPartialKey_Start hands out: where the walk stands, and what it compares with.
struct PartialKeyCursor {
    const void* key;
    int mode;
    zBonsaiNode* node; // null when the walk is over
    unsigned short index;
};

/// Calls `visit` for the entries below `node` in key order until it returns non-zero.
template <typename Visit>
int walk(const zBonsaiNode* node, Visit& visit) {
    if (node == nullptr)
        return 0;
    for (unsigned int i = 0; i < node->Count(); ++i) {
        int result = walk(node->Child(i), visit);
        if (result == 0)
            result = visit(node->Entry(i));
        if (result != 0)
            return result;
    }
    return walk(node->LastChild(), visit);
}

} // namespace

zBonsai::zBonsai(zOki* oki, unsigned short order)
    : fOki(oki),
      fOrder(std::max<unsigned short>(order, 2)),
      fMinimum(static_cast<unsigned short>(fOrder / 2)),
      fStaticSize(oki->IsStaticSize() ? oki->EntrySize(nullptr) : 0) {}

zBonsai::~zBonsai() {
    DeleteAll();
}

void zBonsai::DeleteAll() {
    delete fRoot;
    fRoot = nullptr;
    fCount = 0;
}

void zBonsai::copy_out(const void* entry, void* result, unsigned short* size) const {
    size_t bytes = fStaticSize;
    if (size != nullptr) {
        const unsigned int full = entry_size(entry);
        bytes = std::min<size_t>(*size, full);
        *size = static_cast<unsigned short>(full);
    }
    if (result != nullptr && bytes != 0)
        std::memcpy(result, entry, bytes);
}

/// The position of the entry that equals the key, or with -1 the free child slot where such an entry belongs.
int zBonsai::DoFind(const void* key, Position& position, int mode) const {
    position = {fRoot, 0};
    for (zBonsaiNode* node = fRoot; node != nullptr; node = node->Child(position.index)) {
        int low = 0;
        int high = node->Count() - 1;
        while (low <= high) {
            const int middle = (high - low) / 2 + low;
            const int order = fOki->Compare(key, node->Entry(static_cast<unsigned int>(middle)), mode);
            if (order == 0) {
                position = {node, static_cast<unsigned short>(middle)};
                return 0;
            }
            if (order > 0)
                low = middle + 1;
            else
                high = middle - 1;
        }
        position = {node, static_cast<unsigned short>(low)};
    }
    return -1;
}

int zBonsai::Find(const void* key, void* result, unsigned short* size, int mode) const {
    Position found;
    if (DoFind(key, found, mode) != 0)
        return -1;
    copy_out(found.node->Entry(found.index), result, size);
    return 0;
}

int zBonsai::Add(const void* entry, bool ignoreDuplicate) {
    if (entry_size(entry) > MaxEntrySize())
        return -1;
    Position place;
    if (DoFind(entry, place, 0) == 0)
        return ignoreDuplicate ? 0 : -1;
    if (fRoot == nullptr) {
        fRoot = new zBonsaiNode(this);
        fRoot->AddEntry(0, entry, false);
    } else {
        DoInsertIntoNode(place.node, place.index, entry, nullptr);
    }
    ++fCount;
    return 0;
}

void zBonsai::DoInsertIntoNode(zBonsaiNode* node, unsigned short index, const void* entry,
                               zBonsaiNode* rightChild) {
    if (node->Count() == fOrder) {
        split_and_insert(node, index, entry, rightChild);
        return;
    }
    node->AddEntry(index, entry, true);
    node->SetChild(index + 1u, rightChild);
}

/// Makes room by moving the upper half of a full node to a new one and its median up to the parent.
void zBonsai::split_and_insert(zBonsaiNode* node, unsigned short index, const void* entry,
                               zBonsaiNode* rightChild) {
    const auto at = static_cast<unsigned short>((fOrder - 1) / 2);
    zBonsaiNode* right = node->Split(at);
    const bool goesRight = index > at;
    zBonsaiNode* medianNode = goesRight ? right : node;
    unsigned short median = 0;
    if (goesRight) {
        DoInsertIntoNode(right, static_cast<unsigned short>(index - 1 - at), entry, rightChild);
        node->SetChild(node->Count(), right->TakeChild(0));
    } else {
        DoInsertIntoNode(node, index, entry, rightChild);
        median = node->LastIndex();
    }
    if (node->Parent() != nullptr) {
        DoInsertIntoNode(node->Parent(), node->Parent()->FindNodeIndex(node), medianNode->Entry(median),
                         right);
    } else {
        auto* root = new zBonsaiNode(this);
        root->AddEntry(0, medianNode->Entry(median), false);
        root->SetChild(0, node);
        root->SetChild(1, right);
        fRoot = root;
    }
    zBonsaiNode* leftOfMedian = medianNode->TakeChild(median);
    medianNode->DeleteEntry(median);
    if (!goesRight)
        medianNode->SetChild(median, leftOfMedian);
}

int zBonsai::Delete(const void* key, void* result, unsigned short* size, int mode) {
    Position found;
    if (DoFind(key, found, mode) != 0)
        return -1;
    copy_out(found.node->Entry(found.index), result, size);
    if (fCount == 1) {
        DeleteAll();
        return 0;
    }
    DeleteEntryAt(found.node, found.index);
    --fCount;
    return 0;
}

/// An entry with a child beside it changes places with its neighbour below, until one without children can
/// go.
void zBonsai::DeleteEntryAt(zBonsaiNode* node, unsigned short index) {
    zBonsaiNode* neighbour = node;
    unsigned short neighbourIndex = index;
    if (node->Child(index + 1u) != nullptr) {
        zBonsaiNode::NextEntryInOrder(neighbour, neighbourIndex);
    } else if (node->Child(index) != nullptr) {
        zBonsaiNode::PreviousEntryInOrder(neighbour, neighbourIndex);
    } else if (node->Parent() == nullptr || node->Count() > 1) {
        node->DeleteEntry(index);
        if (node->Parent() != nullptr && node->Count() < fMinimum)
            HandleUnderflow(node);
        return;
    } else {
        zBonsaiNode* parent = node->Parent();
        delete parent->TakeChild(parent->FindNodeIndex(node));
        return;
    }
    node->ReplaceEntry(index, neighbour->Entry(neighbourIndex));
    DeleteEntryAt(neighbour, neighbourIndex);
}

/// Fills a node that has become too small from a sibling, or joins the two. The left sibling is always tried
/// first. The node still has an entry: from order 4 on the minimum is 2, and smaller trees never underflow.
void zBonsai::HandleUnderflow(zBonsaiNode* node) {
    zBonsaiNode* parent = node->Parent();
    const unsigned short slot = parent->FindNodeIndex(node);
    const zBonsaiNode* left = slot > 0 ? parent->Child(slot - 1u) : nullptr;
    const zBonsaiNode* right = slot < parent->Count() ? parent->Child(slot + 1u) : nullptr;
    bool parentLives = true;
    if (left != nullptr && left->Count() > fMinimum)
        rotate_right(parent, slot);
    else if (right != nullptr && right->Count() > fMinimum)
        rotate_left(parent, slot);
    else if (left != nullptr)
        parentLives = merge_children(parent, static_cast<unsigned short>(slot - 1));
    else if (right != nullptr)
        parentLives = merge_children(parent, slot);
    if (parentLives && parent->Parent() != nullptr && parent->Count() < fMinimum)
        HandleUnderflow(parent);
}

/// Moves an entry from the left sibling through the parent to the front of the node in `slot`.
void zBonsai::rotate_right(zBonsaiNode* parent, unsigned short slot) {
    const auto separator = static_cast<unsigned short>(slot - 1);
    zBonsaiNode* left = parent->Child(separator);
    zBonsaiNode* node = parent->Child(slot);
    node->AddEntry(0, parent->Entry(separator), false);
    node->SetChild(0, left->TakeChild(left->Count()));
    const unsigned short last = left->LastIndex();
    parent->ReplaceEntry(separator, left->Entry(last));
    zBonsaiNode* lastChild = left->TakeChild(last);
    left->DeleteEntry(last);
    left->SetChild(last, lastChild);
}

/// Moves an entry from the right sibling through the parent to the end of the node in `slot`.
void zBonsai::rotate_left(zBonsaiNode* parent, unsigned short slot) {
    zBonsaiNode* node = parent->Child(slot);
    zBonsaiNode* right = parent->Child(slot + 1u);
    node->AddEntry(node->Count(), parent->Entry(slot), true);
    node->SetChild(node->Count(), right->TakeChild(0));
    parent->ReplaceEntry(slot, right->Entry(0));
    right->DeleteEntry(0);
}

/// Joins the children left and right of the parent's entry `leftSlot`, with that entry between them. False if
/// the parent was a root of one entry: the joined node is the root then, and the parent gone.
bool zBonsai::merge_children(zBonsaiNode* parent, unsigned short leftSlot) {
    zBonsaiNode* left = parent->TakeChild(leftSlot);
    zBonsaiNode* right = parent->TakeChild(leftSlot + 1u);
    left->AddEntry(left->Count(), parent->Entry(leftSlot), true);
    left->Merge(right);
    if (parent->Parent() == nullptr && parent->Count() == 1) {
        delete parent;
        left->DetachFromParent();
        fRoot = left;
        return false;
    }
    parent->DeleteEntry(leftSlot);
    parent->SetChild(leftSlot, left);
    return true;
}

int zBonsai::FindByPartialKey_Start(void** cursor, const void* key, int mode) const {
    *cursor = nullptr;
    Position first;
    if (DoFind(key, first, mode) != 0)
        return -1;
    Position before = first;
    while (zBonsaiNode::PreviousEntryInOrder(before.node, before.index) == 0 &&
           fOki->Compare(before.node->Entry(before.index), key, mode) == 0)
        first = before;
    *cursor = new PartialKeyCursor{key, mode, first.node, first.index};
    return 0;
}

int zBonsai::FindByPartialKey_Next(void* cursor, void* result, unsigned short* size) const {
    auto* at = static_cast<PartialKeyCursor*>(cursor);
    if (at == nullptr || at->node == nullptr)
        return -1;
    copy_out(at->node->Entry(at->index), result, size);
    if (zBonsaiNode::NextEntryInOrder(at->node, at->index) != 0 ||
        fOki->Compare(at->node->Entry(at->index), at->key, at->mode) != 0)
        at->node = nullptr;
    return 0;
}

void zBonsai::FindByPartialKey_End(void* cursor) const {
    delete static_cast<PartialKeyCursor*>(cursor);
}

int zBonsai::InOrderWalk(int (*visit)(void* entry, void* arg), void* arg) const {
    auto call = [&](const unsigned char* entry) { return visit(const_cast<unsigned char*>(entry), arg); };
    return walk(fRoot, call);
}

int zBonsai::EntryByIndex(int index, void* result, unsigned short* size) const {
    int position = 0;
    auto atIndex = [&](const unsigned char* entry) {
        if (position++ != index)
            return 0;
        copy_out(entry, result, size);
        return 1;
    };
    return walk(fRoot, atIndex) == 1 ? 0 : -1;
}

int zBonsai::Search(int start, int what, const void* key, void* result, unsigned short* size,
                    int* index) const {
    int position = 0;
    auto matching = [&](const unsigned char* entry) {
        if (position < start || !fOki->Search(what, key, entry)) {
            ++position;
            return 0;
        }
        copy_out(entry, result, size);
        return 1;
    };
    const bool found = walk(fRoot, matching) == 1;
    if (index != nullptr)
        *index = position;
    return found ? 0 : -1;
}

unsigned char* zBonsai::DuplicateEntry(const void* entry) const {
    const size_t size = entry_size(entry);
    auto* copy = new unsigned char[size];
    std::memcpy(copy, entry, size);
    return copy;
}

int zBonsai::Validate() const {
    if (fRoot == nullptr)
        return fCount == 0 ? 0 : -1;
    if (fRoot->Parent() != nullptr || fRoot->Validate() != 0)
        return -1;
    unsigned int entries = 0;
    const unsigned char* previous = nullptr;
    auto inOrder = [&](const unsigned char* entry) {
        if (previous != nullptr && fOki->Compare(previous, entry, 0) >= 0)
            return -1;
        previous = entry;
        ++entries;
        return 0;
    };
    return walk(fRoot, inOrder) == 0 && entries == fCount ? 0 : -1;
}

void zBonsai::Print() const {
    std::printf("tree of %u entries\n", fCount);
    if (fRoot != nullptr)
        fRoot->Print(0);
}
