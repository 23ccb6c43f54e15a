#include "vnScreenDiffs.h"

#include <algorithm>
#include <cstdint>

#include "vnScreenDiffs_cg.h"

namespace {

/// The gap between two stretches, each from its first to its last pixel, is within the reach.
bool in_reach(int firstA, int lastA, int firstB, int lastB) {
    return int64_t{lastA} >= int64_t{firstB} - vnScreenDiffs::kReach &&
           int64_t{firstA} <= int64_t{lastB} + vnScreenDiffs::kReach;
}

bool are_neighbours(const zRect& a, const zRect& b) {
    return in_reach(a.left, a.right, b.left, b.right) && in_reach(a.top, a.bottom, b.top, b.bottom);
}

} // namespace

vnScreenDiffs::vnScreenDiffs() : fLock(zCritical::Factory(1)) {
    for (RectList& list : fLists)
        list.reserve(kListStep);
}

vnScreenDiffs::~vnScreenDiffs() = default;

vnScreenDiffs* vnScreenDiffs::Factory() {
    return new vnScreenDiffs_cg;
}

zRect* vnScreenDiffs::RectList_Borrow(int& count) {
    zAutoCritical lock(fLock.get());
    ++fBorrowCount;
    RectList& list = fLists[fCurrentList];
    fCurrentList = 1 - fCurrentList;
    count = static_cast<int>(list.size());
    return list.data();
}

void vnScreenDiffs::RectList_Return() {
    zAutoCritical lock(fLock.get());
    --fBorrowCount;
    fLists[1 - fCurrentList].clear();
}

void vnScreenDiffs::add_rect(const zRect& rect, bool delayed) {
    zAutoCritical lock(fLock.get());
    RectList& list = fLists[delayed ? fDelayedList : fCurrentList];
    const auto neighbour = std::find_if(list.begin(), list.end(),
                                        [&](const zRect& entry) { return are_neighbours(entry, rect); });
    if (neighbour != list.end()) {
        *neighbour = neighbour->Union(rect);
        return;
    }
    if (list.size() == list.capacity())
        list.reserve(list.size() + kListStep);
    list.push_back(rect);
}

void vnScreenDiffs::pop_delayed() {
    zAutoCritical lock(fLock.get());
    const unsigned int drained = 5 - fDelayedList;
    for (const zRect& rect : fLists[drained])
        add_rect(rect, false);
    fLists[drained].clear();
    fDelayedList = drained;
}
