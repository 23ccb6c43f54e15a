#pragma once

#include <cstddef>
#include <cstring>

#include "z4CCCC.h"

/// Tells a zBonsai what its entries are: how two of them compare, how long one is, what a partial key means.
///
/// Entries reach an oki as raw bytes that need not be aligned, so an implementation copies a field out
/// (ReadField) before it looks at it.
class zOki {
  public:
    /// The `mode` in which Compare looks at the first part of a key only. 0 is the whole key.
    static constexpr int kModePartial = z4CCCC("part");

    virtual ~zOki() = default;

    /// Below 0, 0 or above 0 as `a` stands before, with or after `b`. Must be a total order in mode 0.
    virtual int Compare(const void* a, const void* b, int mode) = 0;
    virtual bool SupportsPartialKey() { return false; }

    /// True if all entries have one size; EntrySize is then called with null.
    virtual bool IsStaticSize() = 0;
    /// Bytes of an entry.
    virtual unsigned int EntrySize(const void* entry) = 0;

    /// True if `entry` is what zBonsai::Search looks for; `what` and `key` have the meaning that the two
    /// agree on.
    virtual bool Search([[maybe_unused]] int what, [[maybe_unused]] const void* key,
                        [[maybe_unused]] const void* entry) {
        return false;
    }
    /// Shows an entry on the standard output, for zBonsai::Print.
    virtual void Print([[maybe_unused]] int indent, [[maybe_unused]] void* entry) {}

  protected:
    template <typename Field>
    static Field ReadField(const void* entry, size_t offset = 0) {
        Field field;
        std::memcpy(&field, static_cast<const unsigned char*>(entry) + offset, sizeof field);
        return field;
    }

    /// Order by value: unlike a subtraction it holds over the whole range of the type.
    template <typename Value>
    static int Order(Value a, Value b) {
        return (a > b) - (a < b);
    }
};

/// Entries of a key and a value, in the order of their keys.
template <typename T, typename K>
class zOki_idt : public zOki {
  public:
    struct Entry {
        K key;
        T value;
    };

    /// `what` of a search for a key.
    static constexpr int kSearchByKey = z4CCCC("byky");

    int Compare(const void* a, const void* b, [[maybe_unused]] int mode) override {
        return Order(ReadField<K>(a), ReadField<K>(b));
    }
    bool IsStaticSize() override { return true; }
    unsigned int EntrySize([[maybe_unused]] const void* entry) override { return sizeof(Entry); }
    bool Search(int what, const void* key, const void* entry) override {
        return Search(what, ReadField<K>(key), entry);
    }
    virtual bool Search(int what, K key, const void* entry) {
        return what == kSearchByKey && ReadField<K>(entry) == key;
    }
};

/// Pairs in the order of key, then value, so that one key may stand with many values. A partial key is the
/// key alone.
template <typename T, typename K>
class zOki_idt_keyval : public zOki_idt<T, K> {
  public:
    using Entry = typename zOki_idt<T, K>::Entry;

    int Compare(const void* a, const void* b, int mode) override {
        const int byKey = zOki_idt<T, K>::Compare(a, b, mode);
        if (byKey != 0 || mode == zOki::kModePartial)
            return byKey;
        return zOki::Order(zOki::ReadField<T>(a, offsetof(Entry, value)),
                           zOki::ReadField<T>(b, offsetof(Entry, value)));
    }
    bool SupportsPartialKey() override { return true; }
};

/// The observers of single variables of a table's records, in the order of record, variable and observer. A
/// partial key, in any mode but 0, is record and variable.
class zRecordIDVarIDObserverOki : public zOki {
  public:
    struct Entry {
        int record;
        unsigned int variable;
        int observer;
    };

    int Compare(const void* a, const void* b, int mode) override {
        const auto one = ReadField<Entry>(a);
        const auto other = ReadField<Entry>(b);
        if (one.record != other.record)
            return Order(one.record, other.record);
        if (one.variable != other.variable)
            return Order(one.variable, other.variable);
        return mode != 0 ? 0 : Order(one.observer, other.observer);
    }
    bool SupportsPartialKey() override { return true; }
    bool IsStaticSize() override { return true; }
    unsigned int EntrySize([[maybe_unused]] const void* entry) override { return sizeof(Entry); }
};

/// The entries of zStringID: an id and its text, in the order of one of the two.
class zStringID_zOki : public zOki {
  public:
    struct Entry {
        int id;
        char* text;
    };

    static constexpr int kByText = z4CCCC("strK");
    static constexpr int kByID = z4CCCC("id_K");

    /// `kind` is kByText or kByID.
    explicit zStringID_zOki(int kind) : fKind(kind) {}

    int Compare(const void* a, const void* b, [[maybe_unused]] int mode) override {
        if (fKind == kByID)
            return Order(ReadField<int>(a), ReadField<int>(b));
        return std::strcmp(ReadField<char*>(a, offsetof(Entry, text)),
                           ReadField<char*>(b, offsetof(Entry, text)));
    }
    bool IsStaticSize() override { return true; }
    unsigned int EntrySize([[maybe_unused]] const void* entry) override { return sizeof(Entry); }

    /// For zBonsai::InOrderWalk: frees the text of an entry.
    static int DeleteStringCallback(void* entry, [[maybe_unused]] void* unused) {
        delete[] ReadField<char*>(entry, offsetof(Entry, text));
        return 0;
    }

  private:
    const int fKind;
};

/// The entries of zStrStr: two texts, in the order of the first.
class zStrStr_zOki : public zOki {
  public:
    struct Entry {
        char* key;
        char* value;

        /// Fills the entry with copies that Free releases.
        void Allocate(const char* keyText, const char* valueText);
        void Free();
    };

    int Compare(const void* a, const void* b, [[maybe_unused]] int mode) override {
        return std::strcmp(ReadField<char*>(a), ReadField<char*>(b));
    }
    bool IsStaticSize() override { return true; }
    unsigned int EntrySize([[maybe_unused]] const void* entry) override { return sizeof(Entry); }
    void Print(int indent, void* entry) override;

    /// For zBonsai::InOrderWalk: frees both texts of an entry.
    static int DeleteStringCallback(void* entry, [[maybe_unused]] void* unused) {
        ReadField<Entry>(entry).Free();
        return 0;
    }
};
