#include <algorithm>
#include <deque>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "vnCircularBuffer.h"

namespace {

using Bytes = std::vector<uint8_t>;

TEST(CircularBuffer, CapacityIsTheNextPowerOfTwo) {
    const unsigned cases[][2] = {{1, 1},           {2, 2},           {3, 4},
                                 {352800, 524288}, {524288, 524288}, {0x80000000, 0x80000000},
                                 {0, 0},           {0x80000001, 0},  {0xFFFFFFFF, 0}};
    for (const auto& [value, expected] : cases)
        EXPECT_EQ(RaiseToUpperPowerOfTwo(value), expected) << value;
}

TEST(CircularBuffer, HoldsWhatAQueueWouldHold) {
    constexpr unsigned kCapacity = 64;
    vnCircularBuffer ring(kCapacity);
    ring.SetAllowOverwriting(false);
    std::deque<uint8_t> model;
    std::minstd_rand random(7272);
    uint8_t next = 0;
    for (int step = 0; step < 20000; ++step) {
        Bytes block(random() % (kCapacity + 8));
        if (random() % 2) {
            std::generate(block.begin(), block.end(), [&next] { return ++next; });
            ring.WriteData(block.data(), static_cast<unsigned>(block.size()));
            if (model.size() + block.size() < kCapacity) // One byte stays free.
                model.insert(model.end(), block.begin(), block.end());
        } else {
            Bytes expected(block.size());
            if (block.size() <= model.size()) {
                std::copy_n(model.begin(), block.size(), expected.begin());
                model.erase(model.begin(), model.begin() + static_cast<std::ptrdiff_t>(block.size()));
            }
            ring.ReadData(block.data(), static_cast<unsigned>(block.size()));
            ASSERT_EQ(block, expected) << "step " << step;
        }
        ASSERT_EQ(ring.TotalNumberOfBytesAvailable(), model.size()) << "step " << step;
    }
}

TEST(CircularBuffer, OverwritingLeavesTheReaderWhereItWas) {
    vnCircularBuffer ring(4);
    for (Bytes block : {Bytes{1, 2, 3, 4}, Bytes{5, 6, 7, 8}}) {
        ring.WriteData(block.data(), 4);
        EXPECT_EQ(ring.TotalNumberOfBytesAvailable(), 4U);
    }
    Bytes block(2);
    ring.ReadData(block.data(), 2);
    EXPECT_EQ(block, (Bytes{5, 6}));
}

} // namespace
