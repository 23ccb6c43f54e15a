#include "zBoot.h"

#include "zList.h"

namespace {

// Plain globals without initialisers of their own: the first user may be any library's static initialiser,
// before or after this file's, and must find them as the loader left them.
constexpr uint32_t kInitializedMagic = 0x177ACA34;
uint32_t gzBoot_Initialized;
zList<zBootEntry*>* gzBoot_List;
int32_t gzBoot_Order;
int gzBoot_Started;

void boot_initialize() {
    if (gzBoot_Initialized == kInitializedMagic)
        return;
    gzBoot_Initialized = kInitializedMagic;
    gzBoot_Order = 1;
    gzBoot_List = new zList<zBootEntry*>;
    gzBoot_Started = 0;
}

void start_entry(zBootEntry& entry) {
    if (entry.state == zBootEntry::State::kRunning)
        return;
    entry.state = zBootEntry::State::kStarting;
    if (entry.startup)
        entry.startup();
    entry.startOrder = gzBoot_Order++;
    entry.state = zBootEntry::State::kRunning;
}

zBootEntry* find_module(int32_t moduleId) {
    for (zBootEntry* entry : *gzBoot_List)
        if (entry->moduleId == moduleId)
            return entry;
    return nullptr;
}

void stop_entry_of_order(zList<zBootEntry*>& list, int32_t order) {
    zListIterator<zBootEntry*> it(list);
    while (it.Next()) {
        zBootEntry* entry = it.Current();
        if (entry->startOrder != order)
            continue;
        if (entry->shutdown)
            entry->shutdown();
        it.RmCurrent();
        delete entry;
        return;
    }
}

} // namespace

zBoot::zBoot(void (*startup)(), void (*shutdown)(), int moduleId) {
    boot_initialize();
    if (find_module(moduleId))
        return;
    auto* entry = new zBootEntry{startup, shutdown, zBootEntry::State::kRegistered, moduleId, 0};
    gzBoot_List->Append(entry);
    if (gzBoot_Started)
        start_entry(*entry);
}

void zBoot::Startup() {
    boot_initialize();
    ++gzBoot_Started;
    // By entry, not by range: a start may register further modules at the end of the list.
    for (auto* entry = gzBoot_List->First(); entry; entry = entry->Next())
        start_entry(*entry->value);
}

void zBoot::Depends(int moduleId, void (*include)()) {
    include();
    boot_initialize();
    if (zBootEntry* entry = find_module(moduleId))
        start_entry(*entry);
}

void zBoot::Shutdown() {
    boot_initialize();
    zList<zBootEntry*>* list = gzBoot_List;
    gzBoot_List = nullptr;
    gzBoot_Initialized = 0;
    gzBoot_Order = 0;

    for (auto order = static_cast<int32_t>(list->Count()); order > 0; --order)
        stop_entry_of_order(*list, order);
    list->RemoveAndDeleteAll();
    delete list;
}
