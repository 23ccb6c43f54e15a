#include <gtest/gtest.h>

#include <string>

#include "TestFolder.h"
#include "zBuffer.h"
#include "zBufferStream.h"
#include "zFileStream.h"
#include "zMemPtrStream.h"
#include "zMemoryStream.h"
#include "zResult.h"

namespace {

std::string contents(zStream& stream) {
    char* data = nullptr;
    unsigned int size = 0;
    EXPECT_EQ(stream.ReadAll(&data, &size), 0);
    std::string text(data, size);
    stream.FreeReadAll(data);
    return text;
}

} // namespace

TEST(MemoryStream, ReadsAndWritesAcrossChunks) {
    zMemoryStream stream(7);
    stream.Write("0123456789abcdefghij0123456789");
    stream.Seek(5, zStream::kFromStart);
    stream.Write("#########", 9);
    EXPECT_EQ(contents(stream), "01234#########efghij0123456789");
    stream.Seek(10, zStream::kFromStart);
    EXPECT_EQ(stream.Truncate(), 0);
    EXPECT_EQ(contents(stream), "01234#####");
}

TEST(MemoryStreams, SeekByOneRule) {
    char memory[] = "abc";
    zBuffer buffer(memory, 3, false);
    zMemoryStream chunks(2);
    chunks.Write("abc");
    zMemPtrStream pointer(memory, 3);
    zBufferStream block(buffer);
    const struct {
        int offset;
        unsigned char origin;
        unsigned int position;
    } steps[] = {
        {9, zStream::kFromStart, 3},    {-1, zStream::kFromStart, 3},   {5, zStream::kFromEnd, 0},
        {1, zStream::kFromEnd, 2},      {0, zStream::kFromCurrent, 2},  {1, zStream::kFromCurrent, 2},
        {-2, zStream::kFromCurrent, 2}, {-1, zStream::kFromCurrent, 1},
    };
    for (zStream* stream : std::initializer_list<zStream*>{&chunks, &pointer, &block}) {
        for (const auto& step : steps) {
            EXPECT_EQ(stream->Seek(step.offset, step.origin), 0);
            EXPECT_EQ(stream->Position(), step.position) << step.offset << " from " << int{step.origin};
        }
        EXPECT_NE(stream->Seek(0, 3), 0);
        char bytes[4];
        unsigned int count = 0;
        EXPECT_EQ(stream->Read(bytes, 2, &count), 0) << "exactly what is left";
        EXPECT_EQ(count, 2U);
        EXPECT_EQ(stream->Read(bytes, 1, &count), result::kEndOfStream);
        EXPECT_EQ(count, 0U);
    }
}

TEST(BufferStream, GrowsInStepsAndTrims) {
    zBuffer buffer;
    zBufferStream stream(buffer, 4096);
    const std::string text = std::string(5000, 'x');
    stream.Write(text.c_str());
    EXPECT_EQ(buffer.Size(), 8192U);
    EXPECT_EQ(contents(stream), text);
    stream.ResizeBufferToFit();
    EXPECT_EQ(std::string(buffer.Data(), buffer.Size()), text);
}

TEST(FileStream, WritesReadsUpdatesAndAppends) {
    const TestFolder folder;
    const std::string path = folder / "file";
    zFileStream file(path.c_str(), zFileStream::kWriteFile);
    ASSERT_EQ(file.Open(), 0);
    EXPECT_EQ(file.Write("0123456789"), 0);
    file.SetAbility(zFileStream::kUpdateFile);
    ASSERT_EQ(file.Open(), 0);
    file.Seek(-1, zStream::kFromEnd);
    EXPECT_EQ(file.Position(), 9U) << "from the end counts forwards on a file";
    file.Write("x");
    char bytes[32];
    unsigned int count = 0;
    file.Seek(7, zStream::kFromStart);
    EXPECT_EQ(file.Read(bytes, sizeof bytes, &count), result::kEndOfStream) << "together with the last bytes";
    EXPECT_EQ(count, 3U);

    zFileStream log(path.c_str(), zFileStream::kUpdateFile, true);
    ASSERT_EQ(log.Open(), 0);
    log.Write("+");
    log.Close();
    EXPECT_EQ(folder.Read("file"), "012345678x+");
}

TEST(FileStream, RefusesWhatCannotBe) {
    EXPECT_EQ(zFileStream("/tmp", 3).Open(), -1);
    EXPECT_EQ(zFileStream("/nowhere/at/all").Open(), -1);
    zBuffer buffer;
    EXPECT_EQ(zFileStream::ReadEntireFile("/tmp", buffer), -1) << "a directory";
    zFileStream full("/dev/full", zFileStream::kWriteFile);
    full.DoBuffering(false);
    ASSERT_EQ(full.Open(), 0);
    EXPECT_EQ(full.Write("x"), result::kOutOfRoom);
}
