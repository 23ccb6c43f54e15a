#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "zHeap.h"
#include "zList.h"
#include "zStacker.h"

namespace {

template <typename T>
std::vector<T> values(const zList<T>& list) {
    std::vector<T> forwards;
    for (const T& value : list)
        forwards.push_back(value);
    std::vector<T> backwards;
    for (auto* entry = list.Last(); entry; entry = entry->Previous())
        backwards.insert(backwards.begin(), entry->value);
    EXPECT_EQ(forwards, backwards);
    EXPECT_EQ(list.Count(), forwards.size());
    return forwards;
}

using Ints = std::vector<int>;

} // namespace

TEST(List, KeepsBothDirectionsWhateverIsDone) {
    zList<int> list;
    list.Append(2);
    list.Prepend(1);
    list.AddAtIndex(2, 4);
    list.AddAtIndex(2, 3);
    list.AddAtIndex(0x7FFFFFFF, 5);
    list.Swap(0, 4);
    EXPECT_EQ(values(list), (Ints{5, 2, 3, 4, 1}));
    EXPECT_TRUE(list.Remove(3));
    EXPECT_FALSE(list.Remove(3));
    EXPECT_EQ(list.RemoveFirst(), 5);
    EXPECT_EQ(list.RemoveLast(), 1);
    EXPECT_EQ(list.RemoveIndex(9), 0);
    EXPECT_EQ(values(list), (Ints{2, 4}));
}

TEST(List, ALoopMayRemoveAnyElement) {
    for (const bool forwards : {true, false}) {
        for (const int kept : {0, 1, 2, 4}) { // 0: every one is removed
            zList<int> list;
            for (int i = 1; i <= 4; ++i)
                list.Append(i);
            Ints seen;
            zListIterator<int> it(list);
            while (forwards ? it.Next() : it.Previous()) {
                seen.push_back(it.Current());
                if (it.Current() != kept)
                    it.RmCurrent();
            }
            EXPECT_EQ(seen, forwards ? (Ints{1, 2, 3, 4}) : (Ints{4, 3, 2, 1}));
            EXPECT_EQ(values(list), kept == 0 ? Ints{} : Ints{kept});
        }
    }
}

TEST(List, SortsAnyInput) {
    class Ascending : public zListQuickSort<int> {
        using zListQuickSort::zListQuickSort;
        int compare(int a, int b) override { return a < b ? -1 : a > b; }
    };
    std::mt19937 random(7);
    for (const unsigned int range : {1, 2, 100'000}) {
        for (const int size : {0, 1, 2, 3, 50, 3000}) {
            zList<int> list;
            for (int i = 0; i < size; ++i)
                list.Append(static_cast<int>(random() % range));
            Ints expected = values(list);
            std::sort(expected.begin(), expected.end());
            for (int round = 0; round < 2; ++round) { // The second time it is sorted.
                Ascending(list).Sort();
                EXPECT_EQ(values(list), expected);
            }
        }
    }
}

TEST(Heap, ALoopThatRemovesSkipsNone) {
    zHeap<int> heap;
    for (int i = 1; i <= 9; ++i)
        heap.Append(i);
    int sum = 0;
    zHeapIterator<int> it(heap);
    while (it.Next()) {
        sum += it.Current();
        if (it.Current() % 3 == 0)
            it.RmCurrent();
    }
    EXPECT_EQ(sum, 45);
    EXPECT_EQ(Ints(heap.begin(), heap.end()), (Ints{1, 2, 8, 4, 5, 7})) << "the last fills each hole";
    EXPECT_EQ(heap[6], 0);
}

TEST(Stacker, SpillsToTheHeapAndKeepsItsElements) {
    const size_t before = zStackerDebugStats::TotalHeapBytes();
    {
        zStacker<int, 4> stack;
        for (unsigned int i = 0; i < 4; ++i)
            stack[i] = static_cast<int>(i);
        EXPECT_EQ(zStackerDebugStats::TotalHeapBytes(), before);
        stack[100] = 100;
        EXPECT_EQ(stack[3], 3);
    }
    EXPECT_EQ(zStackerDebugStats::TotalHeapBytes(), before);
}
