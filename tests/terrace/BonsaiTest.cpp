#include "zBonsai.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <random>
#include <vector>

namespace {

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
                // Results are cut to the room, and the full size is told.
                const size_t room = random() % (found.size() - 1);
                auto foundSize = static_cast<uint16_t>(room);
                auto deletedSize = static_cast<uint16_t>(deleted.size());
                found[room] = 0xEE;
                ASSERT_EQ(tree.Find(entry.data(), found.data(), &foundSize, 0), result);
                ASSERT_EQ(tree.Delete(entry.data(), deleted.data(), &deletedSize, 0), result);
                ASSERT_EQ(found[room], 0xEE);
                if (known != model.end()) {
                    const Bytes& expected = known->second;
                    ASSERT_EQ(foundSize, expected.size());
                    ASSERT_EQ(deletedSize, expected.size());
                    ASSERT_EQ(std::memcmp(expected.data(), found.data(), std::min(room, expected.size())), 0);
                    ASSERT_TRUE(std::equal(expected.begin(), expected.end(), deleted.begin()));
                    model.erase(known);
                }
            }
            ASSERT_EQ(tree.Count(), model.size());
            ASSERT_EQ(tree.Validate(), 0) << "step " << step;
        }
        EXPECT_EQ(tree.Add(BlobOki::Make(1000, tree.MaxEntrySize()).data(), false), isFixed ? 0 : -1)
            << "too large";
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
