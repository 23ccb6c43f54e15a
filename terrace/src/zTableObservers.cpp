#include "zTableObservers.h"

#include <algorithm>

#include "zResult.h"

namespace {

using RecordOki = zOki_idt_keyval<int, int>;
using VariableOki = zOki_idt_keyval<int, unsigned int>;
using PairOki = zRecordIDVarIDObserverOki;

int observer_of(const RecordOki::Entry& entry) {
    return entry.value;
}
int observer_of(const VariableOki::Entry& entry) {
    return entry.value;
}
int observer_of(const PairOki::Entry& entry) {
    return entry.observer;
}

void add_unique_observer(zTableObservers::IDs& ids, int observer) {
    if (std::find(ids.begin(), ids.end(), observer) == ids.end())
        ids.push_back(observer);
}

template <typename Oki>
int add_entry(std::unique_ptr<zBonsai>& tree, const typename Oki::Entry& entry) {
    if (!tree)
        tree = std::make_unique<zBonsai>(new Oki);
    return tree->Add(&entry, true);
}

template <typename Oki>
int remove_entry(const std::unique_ptr<zBonsai>& tree, const typename Oki::Entry& entry) {
    return tree ? tree->Delete(&entry, nullptr, nullptr, 0) : result::kOk;
}

template <typename Oki>
bool has_key(const zBonsai& tree, const typename Oki::Entry& key) {
    return tree.Find(&key, nullptr, nullptr, zOki::kModePartial) == 0;
}

template <typename Oki>
void find_observers(zTableObservers::IDs& ids, const std::unique_ptr<zBonsai>& tree,
                    typename Oki::Entry key) {
    void* cursor = nullptr;
    if (!tree || tree->FindByPartialKey_Start(&cursor, &key, zOki::kModePartial) != 0)
        return;
    for (typename Oki::Entry entry; tree->FindByPartialKey_Next(cursor, &entry, nullptr) == 0;)
        add_unique_observer(ids, observer_of(entry));
    tree->FindByPartialKey_End(cursor);
}

} // namespace

int zTableObservers::Add(int observer, int record, unsigned int variable) {
    if (record != kAny && variable != kAnyVariable)
        return add_entry<PairOki>(fByRecordAndVariable, {record, variable, observer});
    if (record != kAny)
        return add_entry<RecordOki>(fByRecord, {record, observer});
    if (variable != kAnyVariable)
        return add_entry<VariableOki>(fByVariable, {variable, observer});
    if (!fAll)
        fAll = std::make_unique<zList<int>>();
    fAll->Append(observer);
    return result::kOk;
}

int zTableObservers::Remove(int observer, int record, unsigned int variable) {
    if (record != kAny && variable != kAnyVariable)
        return remove_entry<PairOki>(fByRecordAndVariable, {record, variable, observer});
    if (record != kAny)
        return remove_entry<RecordOki>(fByRecord, {record, observer});
    if (variable != kAnyVariable)
        return remove_entry<VariableOki>(fByVariable, {variable, observer});
    return !fAll || fAll->Remove(observer) ? result::kOk : result::kFailure;
}

bool zTableObservers::has_record(int record) const {
    return has_key<RecordOki>(*fByRecord, {record, 0});
}

bool zTableObservers::has_variable(unsigned int variable) const {
    return has_key<VariableOki>(*fByVariable, {variable, 0});
}

bool zTableObservers::has_pair(int record, unsigned int variable) const {
    return has_key<PairOki>(*fByRecordAndVariable, {record, variable, 0});
}

void zTableObservers::FindAll(IDs& ids) const {
    if (!fAll)
        return;
    for (const int observer : *fAll)
        add_unique_observer(ids, observer);
}

void zTableObservers::Find(IDs& ids, int record, unsigned int variable) const {
    find_observers<RecordOki>(ids, fByRecord, {record, 0});
    find_observers<VariableOki>(ids, fByVariable, {variable, 0});
    find_observers<PairOki>(ids, fByRecordAndVariable, {record, variable, 0});
}
