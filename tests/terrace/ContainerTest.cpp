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
    EXPECT_EQ(values(list), (Ints{1, 2, 3, 4, 5}));
    list.Swap(0, 4);
    list.Swap(0, 5);
    EXPECT_EQ(values(list), (Ints{5, 2, 3, 4, 1}));
    EXPECT_TRUE(list.Remove(3));
    EXPECT_FALSE(list.Remove(3));
    EXPECT_EQ(list.RemoveFirst(), 5);
    EXPECT_EQ(list.RemoveLast(), 1);
    EXPECT_EQ(list.RemoveIndex(9), 0);
    EXPECT_EQ(values(list), (Ints{2, 4}));
    EXPECT_EQ(list[1], 4);
    EXPECT_EQ(list[2], 0);
    zListEntry<int>* entry = list.First();
    list.UnlinkEntry(entry);
    delete entry;
    EXPECT_EQ(list.RemoveIndex(0), 4);
    EXPECT_EQ(list.RemoveFirst(), 0);
    EXPECT_EQ(values(list), Ints{});
}

TEST(List, ALoopMayRemoveEveryElement) {
    for (const bool forwards : {true, false}) {
        zList<int> list;
        for (int i = 1; i <= 4; ++i)
            list.Append(i);
        Ints seen;
        zListIterator<int> it(list);
        while (forwards ? it.Next() : it.Previous()) {
            seen.push_back(it.Current());
            it.RmCurrent();
            EXPECT_EQ(it.Current(), 0);
        }
        EXPECT_EQ(seen, forwards ? (Ints{1, 2, 3, 4}) : (Ints{4, 3, 2, 1}));
        EXPECT_TRUE(list.IsEmpty());
    }
}

TEST(List, RemovingTheLastElementEndsTheLoop) {
    zList<int> list;
    for (int i = 1; i <= 3; ++i)
        list.Append(i);
    zListIterator<int> it(list);
    int steps = 0;
    while (it.Next()) {
        ++steps;
        if (it.Current() == 3)
            it.RmCurrent();
    }
    EXPECT_EQ(steps, 3);
    EXPECT_EQ(values(list), (Ints{1, 2}));
}

TEST(List, SortsAnyInput) {
    class Ascending : public zListQuickSort<int> {
        using zListQuickSort::zListQuickSort;
        int compare(int a, int b) override { return a < b ? -1 : a > b; }
    };
    std::mt19937 random(7);
    for (const int range : {2, 10, 100'000}) {
        for (const int size : {0, 1, 2, 3, 50, 3000}) {
            Ints expected;
            for (int i = 0; i < size; ++i)
                expected.push_back(static_cast<int>(random() % static_cast<unsigned int>(range)));
            for (const bool presorted : {false, true}) {
                if (presorted)
                    std::sort(expected.rbegin(), expected.rend());
                zList<int> list;
                for (const int value : expected)
                    list.Append(value);
                Ascending(list).Sort();
                Ints sorted = expected;
                std::sort(sorted.begin(), sorted.end());
                EXPECT_EQ(values(list), sorted);
            }
        }
    }
}

TEST(Heap, RemovalMovesTheLastIntoTheHole) {
    zHeap<int> heap;
    for (int i = 1; i <= 30; ++i)
        heap.Append(i);
    EXPECT_EQ(heap.RemoveIndex(0), 1);
    EXPECT_EQ(heap[0], 30);
    EXPECT_EQ(heap.Count(), 29U);
    EXPECT_EQ(heap[29], 0);
    EXPECT_EQ(heap.RemoveIndex(28), 29);
    EXPECT_EQ(heap.RemoveIndex(28), 0);
    heap.Allocate(100, true);
    EXPECT_EQ(heap[27], 28);
}

TEST(Heap, ALoopThatRemovesSkipsNone) {
    zHeap<int> heap;
    for (int i = 1; i <= 9; ++i)
        heap.Append(i);
    Ints seen;
    zHeapIterator<int> it(heap);
    while (it.Next()) {
        seen.push_back(it.Current());
        if (it.Current() % 3 == 0)
            it.RmCurrent();
    }
    std::sort(seen.begin(), seen.end());
    EXPECT_EQ(seen, (Ints{1, 2, 3, 4, 5, 6, 7, 8, 9}));
    EXPECT_EQ(Ints(heap.begin(), heap.end()), (Ints{1, 2, 8, 4, 5, 7}));
}

TEST(Heap, DeletesWhatItIsToldTo) {
    zHeap<int*> heap;
    for (int i = 0; i < 3; ++i)
        heap.Append(new int(i));
    heap.RemoveAndDeleteLast();
    EXPECT_EQ(heap.Count(), 2U);
    heap.RemoveAndDeleteAll();
    EXPECT_EQ(heap.Count(), 0U);
}

TEST(Stacker, SpillsToTheHeapAndKeepsItsElements) {
    const size_t before = zStackerDebugStats::TotalHeapBytes();
    {
        zStacker<int, 4> stack;
        for (unsigned int i = 0; i < 4; ++i)
            stack[i] = static_cast<int>(i);
        EXPECT_EQ(zStackerDebugStats::TotalHeapBytes(), before);
        stack[4] = 4;
        EXPECT_EQ(stack.Capacity(), 8U);
        stack[100] = 100;
        EXPECT_EQ(stack.Capacity(), 105U);
        EXPECT_EQ(zStackerDebugStats::TotalHeapBytes(), before + 105 * sizeof(int));
        for (unsigned int i = 0; i < 5; ++i)
            EXPECT_EQ(stack[i], static_cast<int>(i));
    }
    EXPECT_EQ(zStackerDebugStats::TotalHeapBytes(), before);
}
