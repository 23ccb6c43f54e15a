#pragma once

#include <vector>

/// Gives each value a slot number: a stable handle of constant cost, that goes to another value once it was
/// removed. Does not own what its values point to. No lock.
template <typename T>
class zIndex {
  public:
    unsigned int Count() const { return fUsed; }

    /// The slot of the new value: the one freed last, or else the next that no value ever had.
    unsigned int Add(T value) {
        if (fFree == kNone)
            Allocate(1);
        const unsigned int slot = fFree;
        fFree = fPairs[slot].link;
        fPairs[slot] = {kInUse, value};
        ++fUsed;
        return slot;
    }

    /// Frees the slot and returns its value; the zero value of T where there is none.
    T Remove(unsigned int slot) {
        if (!is_used(slot))
            return fMiss;
        const T value = fPairs[slot].value;
        fPairs[slot] = {fFree, fMiss};
        fFree = slot;
        --fUsed;
        return value;
    }

    /// The zero value of T for a slot that is free or out of range.
    T operator[](unsigned int slot) const { return slot < fPairs.size() ? fPairs[slot].value : fMiss; }

    /// The first slot with that value, by a walk; kNone if there is none.
    unsigned int SlotOf(T value) const {
        for (unsigned int slot = 0; slot < fPairs.size(); ++slot) {
            if (is_used(slot) && fPairs[slot].value == value)
                return slot;
        }
        return kNone;
    }

    /// Makes room for `extra` more values than there is room for now.
    void Allocate(unsigned int extra) {
        for (; extra > 0; --extra) {
            fPairs.push_back({fFree, fMiss});
            fFree = static_cast<unsigned int>(fPairs.size() - 1);
        }
    }

    static constexpr unsigned int kNone = 0xFFFFFFFF;

  private:
    static constexpr unsigned int kInUse = 0xFFFFFFFE;

    struct Pair {
        unsigned int link; ///< The next free slot, kNone at the end of that chain, or kInUse.
        T value;
    };

    bool is_used(unsigned int slot) const { return slot < fPairs.size() && fPairs[slot].link == kInUse; }

    unsigned int fUsed = 0;
    unsigned int fFree = kNone; ///< Head of the chain of free slots.
    std::vector<Pair> fPairs;
    const T fMiss{};
};
