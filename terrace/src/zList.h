#pragma once

#include <cstddef>
#include <utility>
#include <vector>

template <typename T>
class zList;

/// One element of a zList: a heap block of its own, so that it stays in place while others come and go.
template <typename T>
class zListEntry {
  public:
    explicit zListEntry(T v) : value(v) {}

    zListEntry* Next() const { return fNext; }
    zListEntry* Previous() const { return fPrevious; }

    T value;

  private:
    friend class zList<T>;
    zListEntry* fNext = nullptr;
    zListEntry* fPrevious = nullptr;
};

/// A doubly linked list. It does not own what its values point to: RemoveAndDeleteAll and RemoveAndReleaseAll
/// are the ways of ending ownership. An index or search that fails yields the zero value of T. No locks.
template <typename T>
class zList {
  public:
    /// Walks the values for a range-based loop; the loop must not change the list.
    class Walker {
      public:
        explicit Walker(zListEntry<T>* entry) : fEntry(entry) {}
        T& operator*() const { return fEntry->value; }
        Walker& operator++() {
            fEntry = fEntry->Next();
            return *this;
        }
        bool operator==(const Walker&) const = default;

      private:
        zListEntry<T>* fEntry;
    };

    zList() = default;
    ~zList() { RemoveAll(); }
    zList(const zList&) = delete;
    zList& operator=(const zList&) = delete;

    unsigned int Count() const { return fCount; }
    bool IsEmpty() const { return fCount == 0; }
    zListEntry<T>* First() const { return fHead; }
    zListEntry<T>* Last() const { return fTail; }
    Walker begin() const { return Walker(fHead); }
    Walker end() const { return Walker(nullptr); }

    T operator[](unsigned int index) const {
        const zListEntry<T>* entry = EntryAt(index);
        return entry ? entry->value : fZero;
    }

    /// Null when the index is out of range. Walks from the nearer end.
    zListEntry<T>* EntryAt(unsigned int index) const {
        if (index >= fCount)
            return nullptr;
        if (index > fCount / 2) {
            zListEntry<T>* entry = fTail;
            while (++index < fCount)
                entry = entry->fPrevious;
            return entry;
        }
        zListEntry<T>* entry = fHead;
        while (index-- > 0)
            entry = entry->fNext;
        return entry;
    }

    /// Null when no element has the value.
    zListEntry<T>* EntryOf(T value) const {
        zListEntry<T>* entry = fHead;
        while (entry && !(entry->value == value))
            entry = entry->fNext;
        return entry;
    }

    void Append(T value) { insert_before(nullptr, value); }
    void Prepend(T value) { insert_before(fHead, value); }

    /// An index at or past the end appends.
    void AddAtIndex(unsigned int index, T value) { insert_before(EntryAt(index), value); }

    /// Removes the first element with the value; false when there is none.
    bool Remove(T value) {
        zListEntry<T>* entry = EntryOf(value);
        if (entry)
            RemoveEntry(entry);
        return entry != nullptr;
    }

    /// These return the removed value, or the zero value when there is nothing to remove.
    T RemoveIndex(unsigned int index) { return RemoveEntry(EntryAt(index)); }
    T RemoveFirst() { return RemoveEntry(fHead); }
    T RemoveLast() { return RemoveEntry(fTail); }

    T RemoveEntry(zListEntry<T>* entry) {
        if (!entry)
            return fZero;
        UnlinkEntry(entry);
        T value = entry->value;
        delete entry;
        return value;
    }

    /// Takes the entry out of the chain; it is the caller's from here on.
    void UnlinkEntry(zListEntry<T>* entry) {
        (entry->fPrevious ? entry->fPrevious->fNext : fHead) = entry->fNext;
        (entry->fNext ? entry->fNext->fPrevious : fTail) = entry->fPrevious;
        entry->fNext = entry->fPrevious = nullptr;
        --fCount;
    }

    void RemoveAll() {
        while (fHead)
            RemoveFirst();
    }

    void RemoveAndDeleteAll() {
        while (fHead)
            delete RemoveFirst();
    }

    void RemoveAndReleaseAll() {
        while (fHead)
            RemoveFirst()->Release();
    }

    /// Exchanges two values; nothing happens when an index is out of range.
    void Swap(unsigned int a, unsigned int b) {
        zListEntry<T>* first = EntryAt(a);
        zListEntry<T>* second = EntryAt(b);
        if (first && second)
            std::swap(first->value, second->value);
    }

  private:
    void insert_before(zListEntry<T>* next, T value) {
        auto* entry = new zListEntry<T>(value);
        entry->fNext = next;
        entry->fPrevious = next ? next->fPrevious : fTail;
        (entry->fPrevious ? entry->fPrevious->fNext : fHead) = entry;
        (next ? next->fPrevious : fTail) = entry;
        ++fCount;
    }

    zListEntry<T>* fHead = nullptr;
    zListEntry<T>* fTail = nullptr;
    T fZero{};
    unsigned int fCount = 0;
};

/// Walks a list in both directions, before the first element at the start: `while (it.Next())
/// use(it.Current());`. The current element may be removed on the way by RmCurrent; no other may
/// be removed meanwhile.
template <typename T>
class zListIterator {
  public:
    explicit zListIterator(zList<T>& list) : fList(list), fMutableList(&list) {}
    explicit zListIterator(const zList<T>& list) : fList(list) {}

    /// False at the end; the next call starts at the head again.
    bool Next() { return step(fCurrent ? fCurrent->Next() : fAfterRemoved, fList.First()); }
    /// False at the start; the next call starts at the tail again.
    bool Previous() { return step(fCurrent ? fCurrent->Previous() : fBeforeRemoved, fList.Last()); }

    /// The zero value while there is no current element.
    T Current() const { return fCurrent ? fCurrent->value : T{}; }
    zListEntry<T>* CurrentEntry() const { return fCurrent; }

    /// Removes the current element; Next and Previous go on to its neighbours. Does nothing on a const list.
    void RmCurrent() {
        if (!fCurrent || !fMutableList)
            return;
        fAfterRemoved = fCurrent->Next();
        fBeforeRemoved = fCurrent->Previous();
        fMutableList->RemoveEntry(std::exchange(fCurrent, nullptr));
    }

  private:
    bool step(zListEntry<T>* neighbour, zListEntry<T>* start) {
        const bool atStart = !fCurrent && !fAfterRemoved && !fBeforeRemoved;
        fCurrent = atStart ? start : neighbour;
        fAfterRemoved = fBeforeRemoved = nullptr;
        return fCurrent != nullptr;
    }

    const zList<T>& fList;
    zList<T>* fMutableList = nullptr;
    zListEntry<T>* fCurrent = nullptr;
    zListEntry<T>* fAfterRemoved = nullptr;
    zListEntry<T>* fBeforeRemoved = nullptr;
};

/// Sorts a list in place by exchanging values. Derive and give the order; equal elements change places
/// freely, so an order that must be reproducible has to be total.
template <typename T>
class zListQuickSort {
  public:
    explicit zListQuickSort(zList<T>& list) : fList(list) {}
    virtual ~zListQuickSort() = default;

    void Sort() {
        fEntries.reserve(fList.Count());
        for (zListEntry<T>* entry = fList.First(); entry; entry = entry->Next())
            fEntries.push_back(entry);
        quick_sort(0, static_cast<int>(fEntries.size()) - 1);
        fEntries.clear();
    }

  protected:
    /// Negative when a comes before b, positive when behind, 0 when they are alike.
    virtual int compare(T a, T b) = 0;

  private:
    // Recursion takes the smaller part, so that its depth stays logarithmic whatever the input.
    void quick_sort(int low, int high) {
        while (low < high) {
            const int middle = do_partition(low, high);
            if (middle - low < high - middle) {
                quick_sort(low, middle - 1);
                low = middle + 1;
            } else {
                quick_sort(middle + 1, high);
                high = middle - 1;
            }
        }
    }

    // The pivot comes from the middle, because lists are often sorted already.
    int do_partition(int low, int high) {
        swap_values(low, low + (high - low) / 2);
        const T pivot = value_at(low);
        int up = low;
        int down = high;
        while (up < down) {
            while (up < high && compare(value_at(up), pivot) <= 0)
                ++up;
            while (down > low && compare(value_at(down), pivot) > 0)
                --down;
            if (up < down)
                swap_values(up, down);
        }
        swap_values(low, down);
        return down;
    }

    T& value_at(int index) { return fEntries[static_cast<size_t>(index)]->value; }
    void swap_values(int a, int b) { std::swap(value_at(a), value_at(b)); }

    zList<T>& fList;
    std::vector<zListEntry<T>*> fEntries;
};
