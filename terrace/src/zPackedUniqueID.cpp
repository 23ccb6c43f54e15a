#include "zPackedUniqueID.h"

#include <algorithm>

#include "zCritical.h"

zPackedUniqueID::zPackedUniqueID(int size)
    : fTaken(static_cast<size_t>(std::max(size, 0))),
      fGrowth(std::max(size, 0)),
      fCritical(zCritical::Factory(1)) {}

zPackedUniqueID::~zPackedUniqueID() = default;

int zPackedUniqueID::BorrowID() {
    const zAutoCritical lock(fCritical.get());
    int id = find_and_use();
    if (id < 0) {
        fTaken.resize(fTaken.size() + static_cast<size_t>(fGrowth));
        id = find_and_use();
    }
    return std::max(id, 0);
}

void zPackedUniqueID::ReturnID(int id) {
    const zAutoCritical lock(fCritical.get());
    if (id < 0 || static_cast<size_t>(id) >= fTaken.size())
        return;
    fTaken[static_cast<size_t>(id)] = 0;
    --fCount;
}

int zPackedUniqueID::CurrentCount() {
    const zAutoCritical lock(fCritical.get());
    return fCount;
}

int zPackedUniqueID::find_and_use() {
    const auto free = std::find(fTaken.begin(), fTaken.end(), 0);
    if (free == fTaken.end())
        return -1;
    *free = 1;
    ++fCount;
    return static_cast<int>(free - fTaken.begin());
}
