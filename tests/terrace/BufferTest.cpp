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
    EXPECT_EQ(buffer.ResizeTo(0, 0), 0);
    EXPECT_EQ(buffer.Data(), nullptr);
}

TEST(Buffer, GrowsWithItsContentsAndAligned) {
    zBuffer buffer;
    EXPECT_EQ(buffer.SetAndCopyData("abc", 3, 0), 0);
    EXPECT_EQ(buffer.ResizeTo(100'000, zBuffer::kKeepContents | zBuffer::kAlign), 0);
    EXPECT_EQ(std::memcmp(buffer.Data(), "abc", 3), 0);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(buffer.Data()) % 32, 0U);
    buffer.Data()[99'999] = 1;
}

TEST(Buffer, CopyAndOwnMovesTheOwnershipAndLeavesAView) {
    zBuffer source;
    source.SetAndCopyData("abc", 3, 0);
    zBuffer owner(10, 0);
    owner.CopyAndOwn(source);
    EXPECT_TRUE(owner.OwnsData());
    EXPECT_FALSE(source.OwnsData());
    EXPECT_EQ(source.Data(), owner.Data());
    EXPECT_EQ(source.Size(), 3U);

    owner.CopyAndOwn(source);
    owner.CopyAndOwn(owner);
    EXPECT_TRUE(owner.OwnsData()) << "asking twice changes nothing";
    EXPECT_EQ(std::memcmp(source.Data(), "abc", 3), 0);
    zBuffer shallow;
    shallow = owner;
    shallow.CopyAndOwn(owner);
    EXPECT_FALSE(owner.OwnsData());
    EXPECT_EQ(std::memcmp(owner.Data(), "abc", 3), 0);
}

TEST(Buffer, ForeignMemoryIsNotReleased) {
    char memory[] = "\x01\x02\x04\x08\x10";
    zBuffer buffer(memory, 5, false);
    EXPECT_EQ(buffer.Checksum(), 0x0201 ^ 0x0804);
    buffer.SetData(new char[8], 8, true);
    EXPECT_EQ(memory[0], 1);
}
