#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "zHeap.h"
#include "zList.h"

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
    list.AddAtIndex(1, 3);
    list.AddAtIndex(0x7FFFFFFF, 4);
    list.Swap(0, 3);
    EXPECT_EQ(values(list), (Ints{4, 3, 2, 1}));
    EXPECT_TRUE(list.Remove(3));
    EXPECT_FALSE(list.Remove(3));
    EXPECT_EQ(list.RemoveFirst(), 4);
    EXPECT_EQ(list.RemoveIndex(9), 0);
    EXPECT_EQ(values(list), (Ints{2, 1}));
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
        zList<int> list;
        for (int size = 0; size < 500; ++size) {
            Ints expected = values(list);
            std::sort(expected.begin(), expected.end());
            Ascending(list).Sort();
            ASSERT_EQ(values(list), expected);
            list.Append(static_cast<int>(random() % range));
            list.Prepend(static_cast<int>(random() % range));
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
