#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "zBuffer.h"

TEST(Buffer, ShrinkingByLessThan64BytesKeepsTheBlock) {
    zBuffer buffer(1000, 0);
    std::memset(buffer.Data(), 'x', 1000);
    const char* block = buffer.Data();
    EXPECT_EQ(buffer.ResizeTo(937, 0), 0);
    EXPECT_EQ(buffer.Data(), block);
    EXPECT_EQ(buffer.ResizeTo(937 - 64, zBuffer::kKeepContents), 0);
    EXPECT_NE(buffer.Data(), block);
    EXPECT_EQ(buffer.Data()[872], 'x');
    block = buffer.Data();
    EXPECT_EQ(buffer.ResizeTo(1, zBuffer::kKeepContents | zBuffer::kKeepLargerBlock), 0);
    EXPECT_EQ(buffer.Data(), block);
    EXPECT_EQ(buffer.ResizeTo(100'000, zBuffer::kKeepContents | zBuffer::kAlign), 0);
    EXPECT_EQ(buffer.Data()[0], 'x');
    EXPECT_EQ(reinterpret_cast<uintptr_t>(buffer.Data()) % 32, 0U);
    buffer.Data()[99'999] = 1;
}

TEST(Buffer, CopyAndOwnMovesTheOwnershipAndLeavesAView) {
    zBuffer source;
    source.SetAndCopyData("abc", 3, 0);
    zBuffer owner;
    owner = source;
    for (int i = 0; i < 2; ++i) {
        owner.CopyAndOwn(source);
        EXPECT_TRUE(owner.OwnsData()) << "asking twice changes nothing";
        EXPECT_FALSE(source.OwnsData());
        EXPECT_EQ(source.Data(), owner.Data());
    }
}
