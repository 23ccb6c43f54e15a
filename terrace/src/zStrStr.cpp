#include "zStrStr.h"

#include "zCritical.h"

zStrStr::zStrStr() : fTree(new zStrStr_zOki), fCritical(zCritical::Factory(1)) {}

zStrStr::~zStrStr() {
    fTree.InOrderWalk(&zStrStr_zOki::DeleteStringCallback, nullptr);
}

int zStrStr::Add(const char* key, const char* value) {
    const zAutoCritical lock(fCritical.get());
    zStrStr_zOki::Entry entry;
    entry.Allocate(key, value);
    const int added = fTree.Add(&entry, false);
    if (added != 0)
        entry.Free();
    return added;
}

const char* zStrStr::Lookup(const char* key, const char* defaultValue) {
    const zAutoCritical lock(fCritical.get());
    zStrStr_zOki::Entry entry{const_cast<char*>(key), nullptr};
    return fTree.Find(&entry, &entry, nullptr, 0) == 0 ? entry.value : defaultValue;
}

void zStrStr::DEBUG_Print() {
    const zAutoCritical lock(fCritical.get());
    fTree.Print();
}
