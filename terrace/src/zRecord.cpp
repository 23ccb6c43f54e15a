#include "zRecord.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <utility>

#include "zRect.h"
#include "zTable.h"

zRecord::zRecord(const char* xmlTag) {
    SetCString(kXMLTag, xmlTag);
}

zRecord::zRecord(const zRecord& other) {
    zRecord::Copy(other, true, true);
}

zRecord::~zRecord() {
    RemoveAndDeleteAllChildren();
    delete fPending;
    // The registered variables are members of a subclass, whose part is gone by now: they must not be
    // touched.
    delete_variables_from(fRegisteredCount);
}

void zRecord::Init() {
    fParent = nullptr;
    fTable = nullptr;
    delete std::exchange(fPending, nullptr);
    fSuspendCount = 0;
}

// ---- Copies ----

void zRecord::Copy(const zRecord& other, bool withChildren, bool withID) {
    if (&other == this)
        return;
    copy_record_not_children(other, withID);
    if (!withChildren)
        return;
    for (const zRecord* child : other.fChildren) {
        auto* copy = new zRecord;
        copy->Copy(*child, true, withID);
        AddChild(copy);
    }
}

void zRecord::copy_record_not_children(const zRecord& other, bool withID) {
    if (withID && fTable == nullptr)
        fID = other.fID;
    RemoveAndDeleteAllChildren();
    if ((fRegisteredCount == 0 && other.fRegisteredCount == 0) || fRegisteredID == other.fRegisteredID)
        copy_variables_by_position(other);
    else
        copy_variables_by_id(other);
}

void zRecord::copy_variables_by_position(const zRecord& other) {
    for (unsigned int i = 0; i < other.fVariables.Count(); ++i) {
        const zVariable& source = *other.fVariables[i];
        if (i < fVariables.Count()) {
            *fVariables[i] = source;
            fVariables[i]->SetID(source.ID()); // an empty source takes it from a text
        } else {
            fVariables.Append(new zVariable(source));
        }
    }
    for (unsigned int i = other.fVariables.Count(); i < fRegisteredCount; ++i)
        fVariables[i]->MakeEmpty();
    delete_variables_from(std::max(other.fVariables.Count(), fRegisteredCount));
}

void zRecord::copy_variables_by_id(const zRecord& other) {
    for (unsigned int i = 0; i < fRegisteredCount; ++i)
        fVariables[i]->MakeEmpty();
    delete_variables_from(fRegisteredCount);
    for (const zVariable* variable : other.fVariables) {
        if (variable->Type() != zVariable::kNone)
            *FindOrAdd(variable->ID()) = *variable;
    }
}

// ---- Children ----

int zRecord::AddChild(zRecord* child, int index) {
    if (child == nullptr)
        return 0;
    child->fParent = this;
    if (index == kAppend)
        fChildren.Append(child);
    else
        fChildren.AddAtIndex(static_cast<unsigned int>(index), child);
    ++fChildCount;
    if (fTable != nullptr)
        child->recurse_add_child(fTable);
    return child->fID;
}

/// Enters the table, children first. Where the id is taken the record stays free, as if it had no table.
void zRecord::recurse_add_child(zTable* table) {
    fTable = table;
    for (zRecord* child : fChildren)
        child->recurse_add_child(table);
    if (table->add_record_to_table(this) == 0)
        fTable = nullptr;
}

zRecord* zRecord::RemoveChild(unsigned int index) {
    zListEntry<zRecord*>* entry = fChildren.EntryAt(index);
    if (entry == nullptr)
        return nullptr;
    zRecord* child = entry->value;
    // It leaves the table first, so that undo learns its place. It may be in one when this record is not: see
    // recurse_add_child.
    if (zTable* table = fTable != nullptr ? fTable : child->fTable)
        table->remove_record_from_table(child);
    fChildren.RemoveEntry(entry);
    child->fParent = nullptr;
    --fChildCount;
    return child;
}

zRecord* zRecord::RemoveChildPtr(zRecord* child) {
    return RemoveChild(static_cast<unsigned int>(FindIndexOfChild(child)));
}

void zRecord::RemoveAndDeleteAllChildren() {
    while (fChildCount != 0)
        delete RemoveChild(0);
}

zRecord* zRecord::Child(unsigned int index) const {
    return fChildren[index];
}

int zRecord::FindIndexOfChild(const zRecord* child) const {
    const zListEntry<zRecord*>* front = fChildren.First();
    const zListEntry<zRecord*>* back = fChildren.Last();
    for (int low = 0, high = fChildCount - 1; low <= high; ++low, --high) {
        if (front->value == child)
            return low;
        if (back->value == child)
            return high;
        front = front->Next();
        back = back->Previous();
    }
    return -1;
}

bool zRecord::IsEmpty() const {
    return fVariables.Count() == 0 && fChildCount == 0;
}

void zRecord::MakeEmpty() {
    for (unsigned int i = 0; i < fRegisteredCount; ++i)
        fVariables[i]->MakeEmpty();
    delete_variables_from(fRegisteredCount);
    RemoveAndDeleteAllChildren();
}

void zRecord::SortByVariableID(unsigned int id) {
    zRecordSortByVarID(fChildren, id).Sort();
}

int zRecordSortByVarID::compare(zRecord* a, zRecord* b) {
    const int order = a->VariableCompare(*b, fID);
    if (order != 0)
        return order;
    return std::less<>()(b, a) - std::less<>()(a, b);
}

// ---- Walks and searches ----

bool zRecord::DoForEach(bool (*visit)(zRecord&, void*), void* arg, unsigned int order) {
    if (order == kParentFirst && !visit(*this, arg))
        return false;
    for (zRecord* child : fChildren) {
        if (!child->DoForEach(visit, arg, order))
            return false;
    }
    return order == kParentFirst || visit(*this, arg);
}

bool zRecord::matches(unsigned int id, const char* text, z_match_method method) const {
    char buf[64];
    const char* own = AsCString(id, nullptr, &buf);
    if (own == nullptr || text == nullptr)
        return false;
    switch (method) {
    case kMatch_Exact:
    case kMatch_ExactToo:
        return std::strcmp(own, text) == 0;
    case kMatch_Contains:
        return std::strstr(own, text) != nullptr;
    }
    return false;
}

zRecord* zRecord::FindChildByStrVariable(unsigned int id, const char* text, bool includeSelf,
                                         unsigned int depth, z_match_method method) {
    if (includeSelf && matches(id, text, method))
        return this;
    if (depth == 0)
        return nullptr;
    for (zRecord* child : fChildren) {
        if (zRecord* found = child->FindChildByStrVariable(id, text, true, depth - 1, method))
            return found;
    }
    return nullptr;
}

int zRecord::FindChildByStrVariable(zList<zRecord*>& out, unsigned int id, const char* text, bool includeSelf,
                                    unsigned int depth, z_match_method method) {
    int found = 0;
    // Deliberate: the record itself must match exactly whatever the method; searches by a part of a name
    // count on finding children only.
    if (includeSelf && matches(id, text, kMatch_Exact)) {
        out.Append(this);
        ++found;
    }
    if (depth == 0)
        return found;
    for (zRecord* child : fChildren) {
        if (child->matches(id, text, method)) {
            out.Append(child);
            ++found;
        }
        found += child->FindChildByStrVariable(out, id, text, false, depth - 1, method);
    }
    return found;
}

zRecord* zRecord::FindChildByInt32Variable(unsigned int id, int value, bool includeSelf, unsigned int depth) {
    if (includeSelf && AsInt32(id, 0) == value)
        return this;
    if (depth == 0)
        return nullptr;
    for (zRecord* child : fChildren) {
        if (zRecord* found = child->FindChildByInt32Variable(id, value, true, depth - 1))
            return found;
    }
    return nullptr;
}

// ---- Rectangles ----

namespace {

/// The far edge of one direction: a size, where there is one, counts from the near edge.
int far_edge(const zRecord& record, const char* size, int nearEdge, const char* edge, int defaultEdge) {
    if (record.ExistsName(size))
        return zRect::Subtract(zRect::Add(nearEdge, record.AsInt32(size, 0)), 1);
    return record.AsInt32(edge, defaultEdge);
}

} // namespace

zRect::zRect(const zRecord* record, int l, int t, int r, int b) : zRect(l, t, r, b) {
    if (record == nullptr)
        return;
    left = record->AsInt32("left", l);
    top = record->AsInt32("top", t);
    right = far_edge(*record, "width", left, "right", r);
    bottom = far_edge(*record, "height", top, "bottom", b);
}
