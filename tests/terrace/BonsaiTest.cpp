#include "zBonsai.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <numeric>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

using IntOki = zOki_idt<int, int>;
using PairOki = zOki_idt_keyval<int, int>;
using Bytes = std::vector<unsigned char>;

/// The whole length in 2 bytes, a key of 4, then a payload. Odd lengths leave entries unaligned.
class BlobOki : public zOki {
  public:
    static constexpr size_t kHead = 6;
    static constexpr size_t kFixedPayload = 7;

    static Bytes Make(int key, size_t payload, int filler = 0) {
        Bytes entry(kHead + payload, static_cast<unsigned char>(filler));
        const auto size = static_cast<uint16_t>(entry.size());
        std::memcpy(entry.data(), &size, 2);
        std::memcpy(entry.data() + 2, &key, 4);
        return entry;
    }
    explicit BlobOki(bool isFixed = false) : fIsFixed(isFixed) {}
    int Compare(const void* a, const void* b, int) override {
        return Order(ReadField<int>(a, 2), ReadField<int>(b, 2));
    }
    bool IsStaticSize() override { return fIsFixed; }
    unsigned int EntrySize(const void* entry) override {
        return fIsFixed ? kHead + kFixedPayload : ReadField<uint16_t>(entry);
    }

  private:
    const bool fIsFixed;
};

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

} // namespace

TEST(Bonsai, BehavesLikeAMapAtEveryStep) {
    // The balance shifts from one phase to the next, so that trees fill up and drain again.
    constexpr int kPhase = 500, kPhases = 6, kWithLargestEntries = 150;
    const struct {
        unsigned short order;
        bool isFixed;
    } trees[] = {{2, true}, {3, true}, {4, true}, {5, true}, {32, true}, {4, false}, {32, false}};
    Bytes found(zBonsai::kMaxNodeBytes), deleted(zBonsai::kMaxNodeBytes);
    for (const auto& [order, isFixed] : trees) {
        SCOPED_TRACE(order);
        std::mt19937 random(order);
        zBonsai tree(new BlobOki(isFixed), order);
        std::map<int, Bytes> model;
        for (int step = 0; step < kPhases * kPhase; ++step) {
            const int key = static_cast<int>(random() % 500) - 250;
            const auto known = model.find(key);
            const int result = known != model.end() ? 0 : -1;
            const size_t most = tree.MaxEntrySize() - BlobOki::kHead;
            const size_t payload = step < kWithLargestEntries || random() % 20 == 0 ? most : random() % 40;
            const Bytes entry = BlobOki::Make(key, isFixed ? BlobOki::kFixedPayload : payload, step);
            if (random() % 100 < (step / kPhase % 2 == 0 ? 75U : 25U)) {
                ASSERT_EQ(tree.Add(entry.data(), false), -1 - result);
                model.emplace(key, entry);
            } else {
                auto foundSize = static_cast<uint16_t>(found.size());
                auto deletedSize = foundSize;
                ASSERT_EQ(tree.Find(entry.data(), found.data(), &foundSize, 0), result);
                ASSERT_EQ(tree.Delete(entry.data(), deleted.data(), &deletedSize, 0), result);
                if (known != model.end()) {
                    const Bytes& expected = known->second;
                    ASSERT_EQ(foundSize, expected.size());
                    ASSERT_EQ(deletedSize, expected.size());
                    ASSERT_TRUE(std::equal(expected.begin(), expected.end(), found.begin()));
                    ASSERT_TRUE(std::equal(expected.begin(), expected.end(), deleted.begin()));
                    model.erase(known);
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
    std::map<int, std::vector<int>> model;
    for (int i = 0; i < 1500; ++i) {
        const PairOki::Entry entry{static_cast<int>(random() % 40), i};
        ASSERT_EQ(tree.Add(&entry, false), 0);
        model[entry.key].push_back(i);
        const PairOki::Entry gone{static_cast<int>(random() % 40), static_cast<int>(random() % 1500)};
        const bool wasThere = std::erase(model[gone.key], gone.value) > 0;
        ASSERT_EQ(tree.Delete(&gone, nullptr, nullptr, 0), wasThere ? 0 : -1);
    }
    for (int key = -1; key <= 40; ++key) {
        const PairOki::Entry wanted{key, 0};
        void* cursor = nullptr;
        const int started = tree.FindByPartialKey_Start(&cursor, &wanted, zOki::kModePartial);
        EXPECT_EQ(started, model[key].empty() ? -1 : 0);
        std::vector<int> values;
        for (PairOki::Entry found{}; tree.FindByPartialKey_Next(cursor, &found, nullptr) == 0;)
            values.push_back(found.value);
        EXPECT_EQ(values, model[key]);
        tree.FindByPartialKey_End(cursor);
    }
}

TEST(Bonsai, NodesStayHalfFullWhileTheTreeDrains) {
    std::vector<int> keys(1200);
    std::iota(keys.begin(), keys.end(), 0);
    std::shuffle(keys.begin(), keys.end(), std::mt19937(11));
    zBonsai tree(new IntOki);
    for (const int key : keys) {
        const IntOki::Entry entry{key, key};
        ASSERT_EQ(tree.Add(&entry, false), 0);
    }
    for (const int key : keys) {
        ASSERT_EQ(tree.Delete(&key, nullptr, nullptr, 0), 0);
        const std::vector<int> sizes = NodeSizes(tree);
        ASSERT_TRUE(std::all_of(sizes.begin() + 1, sizes.end(), [](int size) { return size >= 16; }));
    }
    EXPECT_EQ(tree.Count(), 0U);
}

TEST(Bonsai, ResultsAreCutToTheRoomAndReportTheFullSize) {
    zBonsai tree(new BlobOki);
    const size_t tooLarge = tree.MaxEntrySize() + 1 - BlobOki::kHead;
    EXPECT_EQ(tree.Add(BlobOki::Make(9, tooLarge).data(), false), -1);
    const Bytes entry = BlobOki::Make(9, 20);
    tree.Add(entry.data(), false);
    EXPECT_EQ(tree.Add(BlobOki::Make(9, 5).data(), true), 0) << "ignored, and the old one stays";
    for (const uint16_t room : {uint16_t{0}, uint16_t{7}}) {
        Bytes result(8, 0xEE);
        unsigned short size = room;
        EXPECT_EQ(tree.Find(entry.data(), result.data(), &size, 0), 0);
        EXPECT_EQ(size, 26);
        EXPECT_TRUE(std::equal(entry.begin(), entry.begin() + room, result.begin()));
        EXPECT_EQ(result[room], 0xEE);
    }
}

TEST(Bonsai, FindsByPositionAndByPredicate) {
    zBonsai tree(new IntOki);
    for (int key = 0; key < 100; ++key) {
        const IntOki::Entry entry{key * 2, key};
        tree.Add(&entry, false);
    }
    IntOki::Entry entry{};
    for (const auto& [position, expected] : {std::pair{-1, -1}, {0, 0}, {99, 0}, {100, -1}})
        EXPECT_EQ(tree.EntryByIndex(position, &entry, nullptr), expected) << position;
    EXPECT_EQ(entry.key, 198);
    for (const auto& [start, found] : {std::pair{10, 42}, {43, 100}}) {
        const int wanted = 84;
        int index = 0;
        tree.Search(start, IntOki::kSearchByKey, &wanted, &entry, nullptr, &index);
        EXPECT_EQ(index, found);
    }
}
