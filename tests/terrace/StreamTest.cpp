#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "zBuffer.h"
#include "zBufferStream.h"
#include "zFileStream.h"
#include "zMemPtrStream.h"
#include "zMemoryStream.h"
#include "zResult.h"

namespace {

/// A file that goes away with the test.
class TemporaryFile {
  public:
    TemporaryFile() { EXPECT_EQ(zFileStream::CreateTemporaryFile(fPath, "glasspane_test_%ld"), 0); }
    ~TemporaryFile() { zFileStream::RemoveFile(fPath); }
    operator const char*() const { return fPath; }

  private:
    zString fPath;
};

std::string contents(zStream& stream) {
    char* data = nullptr;
    unsigned int size = 0;
    EXPECT_EQ(stream.ReadAll(&data, &size), 0);
    std::string text(data, size);
    stream.FreeReadAll(data);
    return text;
}

std::string pattern(size_t size) {
    std::string text;
    for (size_t i = 0; i < size; ++i)
        text += static_cast<char>('a' + i % 26);
    return text;
}

} // namespace

TEST(MemoryStream, ReadsAndWritesAcrossChunks) {
    const std::string text = pattern(100);
    zMemoryStream stream(7);
    unsigned int written = 0;
    EXPECT_EQ(stream.Write(text.c_str(), kWholeText, &written), 0);
    EXPECT_EQ(written, 100U);
    EXPECT_EQ(contents(stream), text);

    stream.Seek(5, zStream::kFromStart);
    stream.Write("#########", 9);
    EXPECT_EQ(contents(stream), std::string(text).replace(5, 9, "#########"));
    stream.Seek(10, zStream::kFromStart);
    EXPECT_EQ(stream.Truncate(), 0);
    EXPECT_EQ(contents(stream), std::string(text).replace(5, 5, "#####").substr(0, 10));
}

TEST(MemoryStream, ReadOnlyMemoryTakesNoBytes) {
    char memory[] = "abc";
    zMemoryStream stream;
    stream.Write("old text");
    stream.SetReadOnlyBuffer(memory, 3);
    EXPECT_EQ(contents(stream), "abc");
    EXPECT_NE(stream.Write("x"), 0);
    EXPECT_NE(stream.Truncate(), 0);
    stream.Close();
    unsigned int count = 1;
    stream.Seek(0, zStream::kFromStart);
    EXPECT_EQ(stream.Read(memory, 3, &count), result::kEndOfStream);
    EXPECT_EQ(count, 0U);
    EXPECT_EQ(contents(stream), "");
    zBuffer rest;
    EXPECT_EQ(stream.ReadAll(&rest), 0);
    EXPECT_EQ(rest.Size(), 0U);
}

TEST(MemoryStreams, SeekByOneRule) {
    char memory[] = "abc";
    zBuffer buffer(memory, 3, false);
    zMemoryStream chunks(2);
    chunks.Write("abc");
    zMemPtrStream pointer(memory, 3);
    zBufferStream block(buffer);
    for (zStream* stream :
         {static_cast<zStream*>(&chunks), static_cast<zStream*>(&pointer), static_cast<zStream*>(&block)}) {
        const auto position_after = [stream](int offset, unsigned char origin) {
            EXPECT_EQ(stream->Seek(offset, origin), 0);
            return stream->Position();
        };
        EXPECT_EQ(position_after(9, zStream::kFromStart), 3U);
        EXPECT_EQ(position_after(-1, zStream::kFromStart), 3U);
        EXPECT_EQ(position_after(5, zStream::kFromEnd), 0U);
        EXPECT_EQ(position_after(1, zStream::kFromEnd), 2U);
        EXPECT_EQ(position_after(0, zStream::kFromCurrent), 2U);
        EXPECT_EQ(position_after(1, zStream::kFromCurrent), 2U) << "the end is out of reach";
        EXPECT_EQ(position_after(-2, zStream::kFromCurrent), 2U) << "the start is out of reach";
        EXPECT_EQ(position_after(-1, zStream::kFromCurrent), 1U);
        EXPECT_NE(stream->Seek(0, 3), 0);
        unsigned int size = 0;
        EXPECT_EQ(stream->StreamSize(&size), 0);
        EXPECT_EQ(size, 3U);
        EXPECT_EQ(stream->Position(), 1U);

        char bytes[4];
        unsigned int count = 0;
        EXPECT_EQ(stream->Read(bytes, 2, &count), 0) << "exactly what is left";
        EXPECT_EQ(count, 2U);
        EXPECT_EQ(stream->Read(bytes, 1, &count), result::kEndOfStream);
        EXPECT_EQ(count, 0U);
    }
}

TEST(MemPtrStream, WritesNoFurtherThanItsMemory) {
    char memory[5] = "....";
    zMemPtrStream stream(memory, 4);
    unsigned int written = 0;
    EXPECT_EQ(stream.Write("0123456789", 10, &written), 0);
    EXPECT_EQ(written, 4U);
    EXPECT_STREQ(memory, "0123");
    zBuffer view;
    stream.ReadAll(&view);
    EXPECT_EQ(view.Data(), memory);
    EXPECT_FALSE(view.OwnsData());
}

TEST(BufferStream, GrowsInStepsAndTrims) {
    zBuffer buffer;
    zBufferStream stream(buffer, 4096);
    stream.Write("", 0);
    EXPECT_EQ(buffer.Size(), 0U);
    stream.Write("x", 1);
    EXPECT_EQ(buffer.Size(), 4096U);
    unsigned int size = 0;
    stream.StreamSize(&size);
    EXPECT_EQ(size, 1U);
    const std::string text = pattern(5000);
    stream.Write(text.c_str());
    EXPECT_EQ(buffer.Size(), 8192U);
    stream.ResizeBufferToFit();
    EXPECT_EQ(std::string(buffer.Data(), buffer.Size()), "x" + text);
}

TEST(Stream, FastReadHandsOverBlocksAndStopsOnRequest) {
    zMemoryStream stream(10);
    stream.Write(pattern(25).c_str());
    stream.Seek(0, zStream::kFromStart);
    struct Seen {
        std::string bytes;
        int last = 0;
    } seen;
    const auto take = [](void* context, const char* data, unsigned int size, bool last) {
        auto* s = static_cast<Seen*>(context);
        s->bytes.append(data, size);
        s->last += last;
        return 0;
    };
    EXPECT_EQ(stream.FastRead(&seen, take), 0);
    EXPECT_EQ(seen.bytes, pattern(25));
    EXPECT_EQ(seen.last, 1);
    stream.Seek(0, zStream::kFromStart);
    EXPECT_EQ(stream.FastRead(nullptr, [](void*, const char*, unsigned int, bool) { return -7; }), -7);
}

TEST(Stream, CopiesAndFindsDifferences) {
    zMemoryStream from(3);
    zMemoryStream to(5);
    from.Write("0123456789");
    to.Write("a longer text than that");
    from.Seek(4, zStream::kFromStart);
    EXPECT_EQ(zStream::ExactCopy(to, from, 4), 0);
    EXPECT_EQ(from.Position(), 4U);
    EXPECT_EQ(contents(to), "0123456789");

    from.Seek(0, zStream::kFromStart);
    to.Seek(0, zStream::kFromStart);
    EXPECT_EQ(from.FindDifference(&to), 0);
    to.Write("+");
    from.Seek(0, zStream::kFromStart);
    to.Seek(0, zStream::kFromStart);
    EXPECT_EQ(from.FindDifference(&to), 1);

    char memory[4];
    zMemPtrStream small(memory, sizeof memory);
    EXPECT_EQ(zStream::BulkWriteAll(to, from, 0), -1);
    from.Seek(0, zStream::kFromStart);
    EXPECT_EQ(zStream::BulkWriteAll(small, from, 3), -1);
    EXPECT_EQ(zStream::ExactCopy(small, from, 3), -1) << "it cannot truncate";
}

TEST(Stream, AssignmentCopiesBytesAndNothingElse) {
    zMemoryStream from(3);
    from.Write("0123456789");
    zMemoryStream chunks(4);
    chunks = from;
    EXPECT_EQ(contents(chunks), "0123456789");
    EXPECT_EQ(chunks.OptimalBufferSize(), 4U) << "each keeps its own chunks";
    zStream& same = chunks;
    chunks = same;
    EXPECT_EQ(contents(chunks), "0123456789");

    char memory[4] = {};
    char source[] = "abc";
    zMemPtrStream pointer(memory, sizeof memory);
    zMemPtrStream other(source, sizeof source);
    pointer = other;
    EXPECT_STREQ(memory, "abc");
    pointer = from;
    EXPECT_EQ(contents(pointer), "0123") << "cut short at the end of the memory";
}

TEST(FileStream, WritesReadsUpdatesAndAppends) {
    const TemporaryFile path;
    EXPECT_FALSE(zFileStream::Exists(path));
    zFileStream file(path, zFileStream::kWriteFile);
    ASSERT_EQ(file.Open(), 0);
    EXPECT_EQ(file.Write("0123456789"), 0);
    file.Close();
    EXPECT_EQ(zFileStream::FileSize(path), 10U);

    file.SetAbility(zFileStream::kUpdateFile);
    ASSERT_EQ(file.Open(), 0);
    file.Seek(-1, zStream::kFromEnd);
    EXPECT_EQ(file.Position(), 9U) << "from the end counts forwards on a file";
    file.Write("x");
    EXPECT_EQ(contents(file), "012345678x");

    zFileStream log(path, zFileStream::kUpdateFile, true);
    ASSERT_EQ(log.Open(), 0);
    log.Write("+");
    log.Close();
    zBuffer all;
    EXPECT_EQ(zFileStream::ReadEntireFile(path, all), 0);
    EXPECT_EQ(std::string(all.Data(), all.Size()), "012345678x+");
}

TEST(FileStream, ReportsTheEndTogetherWithTheLastBytes) {
    const TemporaryFile path;
    zFileStream file(path, zFileStream::kWriteFile);
    ASSERT_EQ(file.Open(), 0);
    file.Write("abc");
    file.SetAbility(zFileStream::kReadFile);
    ASSERT_EQ(file.Open(), 0);
    char bytes[8];
    unsigned int count = 0;
    EXPECT_EQ(file.Read(bytes, sizeof bytes, &count), result::kEndOfStream);
    EXPECT_EQ(count, 3U);
}

TEST(FileStream, RefusesWhatCannotBe) {
    zFileStream odd("/tmp", 3);
    EXPECT_EQ(odd.Open(), -1);
    zFileStream missing("/nowhere/at/all");
    EXPECT_EQ(missing.Open(), -1);
    EXPECT_EQ(missing.Write("x"), -1);
    zBuffer buffer;
    EXPECT_EQ(zFileStream::ReadEntireFile(nullptr, buffer), result::kBadArgument);
    EXPECT_EQ(zFileStream::ReadEntireFile("/tmp", buffer), -1) << "a directory";

    zFileStream full("/dev/full", zFileStream::kWriteFile);
    full.DoBuffering(false);
    ASSERT_EQ(full.Open(), 0);
    EXPECT_EQ(full.Write("x"), result::kOutOfRoom);
}

TEST(FileStream, TemporaryNamesAreNewAndInTheTemporaryDirectory) {
    zString one;
    zString two;
    EXPECT_EQ(zFileStream::CreateTemporaryFile(one, "%s no number"), 0);
    EXPECT_EQ(zFileStream::CreateTemporaryFile(two, nullptr), 0);
    EXPECT_EQ(one.FindSubString("/tmp/quillon_temporary_file_"), static_cast<const char*>(one));
    EXPECT_NE(one, two);
}
