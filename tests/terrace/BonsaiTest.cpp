#include "zBonsai.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <map>
#include <memory>
#include <numeric>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

using IntOki = zOki_idt<int, int>;
using PairOki = zOki_idt_keyval<int, int>;

/// Entries of any length: the whole length in 2 bytes, a key of 4, then a payload. Odd lengths leave them
/// unaligned.
class BlobOki : public zOki {
  public:
    static std::vector<unsigned char> Make(int key, size_t payload) {
        std::vector<unsigned char> entry(6 + payload, static_cast<unsigned char>(key));
        const auto size = static_cast<uint16_t>(entry.size());
        std::memcpy(entry.data(), &size, 2);
        std::memcpy(entry.data() + 2, &key, 4);
        return entry;
    }
    int Compare(const void* a, const void* b, int) override {
        return Order(ReadField<int>(a, 2), ReadField<int>(b, 2));
    }
    bool IsStaticSize() override { return false; }
    unsigned int EntrySize(const void* entry) override { return ReadField<uint16_t>(entry); }
};

int AddPair(zBonsai& tree, int key, int value, bool ignoreDuplicate = false) {
    const IntOki::Entry entry{key, value};
    return tree.Add(&entry, ignoreDuplicate);
}

int DeleteKey(zBonsai& tree, int key) {
    const IntOki::Entry entry{key, 0};
    return tree.Delete(&entry, nullptr, nullptr, 0);
}

std::vector<int> KeysOf(const zBonsai& tree) {
    std::vector<int> keys;
    const auto collect = [](void* entry, void* arg) {
        static_cast<std::vector<int>*>(arg)->push_back(static_cast<IntOki::Entry*>(entry)->key);
        return 0;
    };
    EXPECT_EQ(tree.InOrderWalk(collect, &keys), 0);
    return keys;
}

/// The entries of each node, the root first, as Print shows them.
std::vector<int> NodeSizes(const zBonsai& tree) {
    testing::internal::CaptureStdout();
    tree.Print();
    std::istringstream lines(testing::internal::GetCapturedStdout());
    std::vector<int> sizes;
    for (std::string line; std::getline(lines, line);) {
        int size = 0;
        if (std::sscanf(line.c_str(), " node of %d", &size) == 1)
            sizes.push_back(size);
    }
    return sizes;
}

/// Which of two actions the next step takes shifts slowly, so that trees fill up and drain again.
bool ShouldAdd(std::mt19937& random, int step) {
    return random() % 100 < (step / 700 % 2 == 0 ? 75u : 25u);
}

} // namespace

TEST(Bonsai, FixedEntriesBehaveLikeAMapAtEveryStep) {
    for (const unsigned short order : std::initializer_list<unsigned short>{2, 3, 4, 5, 32}) {
        SCOPED_TRACE(order);
        std::mt19937 random(order);
        zBonsai tree(new IntOki, order);
        std::map<int, int> model;
        for (int step = 0; step < 4200; ++step) {
            const int key = static_cast<int>(random() % 600) - 300;
            if (ShouldAdd(random, step)) {
                const bool added = model.emplace(key, step).second;
                ASSERT_EQ(AddPair(tree, key, step), added ? 0 : -1);
            } else {
                IntOki::Entry entry{key, 0};
                const auto expected = model.find(key);
                ASSERT_EQ(tree.Delete(&entry, &entry, nullptr, 0), expected == model.end() ? -1 : 0);
                if (expected != model.end()) {
                    ASSERT_EQ(entry.value, expected->second);
                    model.erase(expected);
                }
            }
            IntOki::Entry probe{static_cast<int>(random() % 600) - 300, 0};
            const auto expected = model.find(probe.key);
            ASSERT_EQ(tree.Find(&probe, &probe, nullptr, 0), expected == model.end() ? -1 : 0);
            if (expected != model.end()) {
                ASSERT_EQ(probe.value, expected->second);
            }
            ASSERT_EQ(tree.Count(), model.size());
            ASSERT_EQ(tree.Validate(), 0) << "step " << step;
        }
    }
}

TEST(Bonsai, EntriesOfAnyLengthBehaveLikeAMapAtEveryStep) {
    for (const unsigned short order : std::initializer_list<unsigned short>{4, 32}) {
        SCOPED_TRACE(order);
        std::mt19937 random(order);
        zBonsai tree(new BlobOki, order);
        std::map<int, std::vector<unsigned char>> model;
        for (int step = 0; step < 3500; ++step) {
            const int key = static_cast<int>(random() % 500);
            const bool known = model.contains(key);
            if (ShouldAdd(random, step)) {
                const size_t most = tree.MaxEntrySize() - 6;
                const auto entry = BlobOki::Make(key, random() % 10 == 0 ? most : random() % 40);
                ASSERT_EQ(tree.Add(entry.data(), false), known ? -1 : 0);
                model.emplace(key, entry);
            } else {
                const auto probe = BlobOki::Make(key, 0);
                std::vector<unsigned char> result(0xFFFF);
                auto size = static_cast<unsigned short>(result.size());
                ASSERT_EQ(tree.Delete(probe.data(), result.data(), &size, 0), known ? 0 : -1);
                if (known) {
                    result.resize(size);
                    ASSERT_EQ(result, model[key]);
                    model.erase(key);
                }
            }
            ASSERT_EQ(tree.Count(), model.size());
            ASSERT_EQ(tree.Validate(), 0) << "step " << step;
        }
    }
}

TEST(Bonsai, PartialKeysFindExactlyTheEntriesOfTheirKey) {
    std::mt19937 random(7);
    zBonsai tree(new PairOki);
    std::multimap<int, int> model;
    for (int i = 0; i < 1500; ++i) {
        const PairOki::Entry entry{static_cast<int>(random() % 40), i};
        ASSERT_EQ(tree.Add(&entry, false), 0);
        model.emplace(entry.key, i);
        const PairOki::Entry gone{static_cast<int>(random() % 40), static_cast<int>(random() % 1500)};
        const auto [first, last] = model.equal_range(gone.key);
        const auto there =
            std::find_if(first, last, [&](const auto& pair) { return pair.second == gone.value; });
        ASSERT_EQ(tree.Delete(&gone, nullptr, nullptr, 0), there == last ? -1 : 0);
        if (there != last)
            model.erase(there);
    }
    for (int key = -1; key <= 40; ++key) {
        const PairOki::Entry wanted{key, 0};
        void* cursor = nullptr;
        const auto [first, last] = model.equal_range(key);
        EXPECT_EQ(tree.FindByPartialKey_Start(&cursor, &wanted, zOki::kModePartial), first == last ? -1 : 0);
        PairOki::Entry found{};
        for (auto expected = first; expected != last; ++expected) {
            ASSERT_EQ(tree.FindByPartialKey_Next(cursor, &found, nullptr), 0);
            ASSERT_EQ(found.value, expected->second);
        }
        EXPECT_EQ(tree.FindByPartialKey_Next(cursor, &found, nullptr), -1);
        tree.FindByPartialKey_End(cursor);
    }
}

TEST(Bonsai, AFullNodeSplitsInHalves) {
    zBonsai tree(new IntOki);
    for (int key = 0; key < 32; ++key)
        AddPair(tree, key, 0);
    EXPECT_EQ(NodeSizes(tree), (std::vector<int>{32}));
    AddPair(tree, 32, 0);
    EXPECT_EQ(NodeSizes(tree), (std::vector<int>{1, 16, 16}));
}

TEST(Bonsai, NodesStayHalfFullWhileTheTreeDrains) {
    std::vector<int> keys(2000);
    std::iota(keys.begin(), keys.end(), 0);
    zBonsai tree(new IntOki);
    for (int key : keys)
        AddPair(tree, key, 0);
    std::shuffle(keys.begin(), keys.end(), std::mt19937(11));
    for (size_t i = 0; i < keys.size() - 1; ++i) {
        DeleteKey(tree, keys[i]);
        if (i % 50 != 0)
            continue;
        const std::vector<int> sizes = NodeSizes(tree);
        EXPECT_TRUE(std::all_of(sizes.begin() + 1, sizes.end(), [](int size) { return size >= 16; })) << i;
    }
    EXPECT_EQ(NodeSizes(tree), (std::vector<int>{1}));
}

TEST(Bonsai, DrainsInEitherOrderAndEndsEmpty) {
    for (bool backwards : {false, true}) {
        zBonsai tree(new IntOki);
        for (int key = 0; key < 1200; ++key)
            ASSERT_EQ(AddPair(tree, key, 0), 0);
        for (int i = 0; i < 1200; ++i) {
            ASSERT_EQ(DeleteKey(tree, backwards ? 1199 - i : i), 0);
            ASSERT_EQ(tree.Validate(), 0);
        }
        EXPECT_EQ(tree.Count(), 0u);
        EXPECT_EQ(DeleteKey(tree, 1), -1);
        EXPECT_EQ(AddPair(tree, 1, 1), 0);
        tree.DeleteAll();
        EXPECT_EQ(tree.Validate(), 0);
    }
}

TEST(Bonsai, DuplicatesLeaveTheTreeAlone) {
    zBonsai tree(new IntOki);
    EXPECT_EQ(AddPair(tree, 5, 1), 0);
    EXPECT_EQ(AddPair(tree, 5, 2), -1);
    EXPECT_EQ(AddPair(tree, 5, 3, true), 0);
    IntOki::Entry entry{5, 0};
    EXPECT_EQ(tree.Find(&entry, &entry, nullptr, 0), 0);
    EXPECT_EQ(entry.value, 1);
    EXPECT_EQ(tree.Count(), 1u);
}

TEST(Bonsai, ResultsAreCutToTheRoomAndReportTheFullSize) {
    zBonsai tree(new BlobOki);
    const auto entry = BlobOki::Make(9, 20);
    tree.Add(entry.data(), false);
    unsigned char result[8];
    std::memset(result, 0xEE, sizeof result);
    unsigned short size = 0;
    EXPECT_EQ(tree.Find(entry.data(), result, &size, 0), 0);
    EXPECT_EQ(size, 26);
    EXPECT_EQ(result[0], 0xEE);
    EXPECT_EQ(tree.Find(entry.data(), result, nullptr, 0), 0)
        << "without a size, variable entries are not copied";
    EXPECT_EQ(result[0], 0xEE);
    size = 7;
    EXPECT_EQ(tree.Find(entry.data(), result, &size, 0), 0);
    EXPECT_EQ(std::memcmp(result, entry.data(), 7), 0);
    EXPECT_EQ(result[7], 0xEE);
    const std::unique_ptr<unsigned char[]> copy(tree.DuplicateEntry(entry.data()));
    EXPECT_EQ(std::memcmp(copy.get(), entry.data(), entry.size()), 0);
}

TEST(Bonsai, EntriesTooLargeForAFullNodeAreRefused) {
    zBonsai tree(new BlobOki);
    for (int key = 0; key < 100; ++key) {
        const auto largest = BlobOki::Make(key, tree.MaxEntrySize() - 6);
        ASSERT_EQ(tree.Add(largest.data(), false), 0);
        const auto tooLarge = BlobOki::Make(key + 1000, tree.MaxEntrySize() - 5);
        ASSERT_EQ(tree.Add(tooLarge.data(), false), -1);
    }
    EXPECT_EQ(tree.Count(), 100u);
    EXPECT_EQ(tree.Validate(), 0);
}

TEST(Bonsai, WalksByPositionAndByPredicate) {
    zBonsai tree(new IntOki);
    for (int key = 99; key >= 0; --key)
        AddPair(tree, key * 2, key);
    EXPECT_EQ(KeysOf(tree)[50], 100);
    IntOki::Entry entry{};
    EXPECT_EQ(tree.EntryByIndex(99, &entry, nullptr), 0);
    EXPECT_EQ(entry.key, 198);
    EXPECT_EQ(tree.EntryByIndex(100, &entry, nullptr), -1);
    EXPECT_EQ(tree.EntryByIndex(-1, &entry, nullptr), -1);
    const int wanted = 84;
    int index = 0;
    EXPECT_EQ(tree.Search(10, IntOki::kSearchByKey, &wanted, &entry, nullptr, &index), 0);
    EXPECT_EQ(index, 42);
    EXPECT_EQ(entry.value, 42);
    EXPECT_EQ(tree.Search(43, IntOki::kSearchByKey, &wanted, &entry, nullptr, &index), -1);
    EXPECT_EQ(index, 100);
    const auto stopAtTen = [](void* at, void*) { return static_cast<IntOki::Entry*>(at)->key == 10 ? 7 : 0; };
    EXPECT_EQ(tree.InOrderWalk(stopAtTen, nullptr), 7);
}
