#pragma once

#include "zString.h"

class zBuffer;

/// One interface for bytes in files and in several kinds of memory. Results are 0, -1, result::kEndOfStream,
/// result::kOutOfRoom and result::kBadArgument. A stream belongs to one thread at a time.
class zStream {
  public:
    /// What a stream can do, bits of the ability byte.
    static constexpr unsigned char kRead = 1;
    static constexpr unsigned char kWrite = 2;
    static constexpr unsigned char kSeek = 4;
    static constexpr unsigned char kTruncate = 8;

    /// Origins of Seek. Memory streams count kFromEnd backwards.
    static constexpr unsigned char kFromStart = 0;
    static constexpr unsigned char kFromEnd = 1;
    static constexpr unsigned char kFromCurrent = 2;

    /// Gets the bytes of FastRead; `last` tells that no more come. A result other than 0 ends the reading.
    using Receiver = int (*)(void* context, const char* data, unsigned int size, bool last);

    explicit zStream(unsigned char ability) : fAbility(ability) {}
    virtual ~zStream() = default;
    zStream(const zStream&) = delete;
    /// Copies the contents of the other stream from its start over this one's from its start.
    zStream& operator=(zStream& other);

    unsigned char Ability() const { return fAbility; }
    bool Can(unsigned char ability) const { return (fAbility & ability) == ability; }

    /// A file's path; null for memory.
    virtual const char* Name() const { return nullptr; }
    virtual unsigned int OptimalBufferSize() const { return kDefaultBufferSize; }
    virtual int Open() { return 0; }
    virtual int Close() { return 0; }
    /// Ends the stream at the present position.
    virtual int Truncate() { return -1; }
    /// All bytes in one new block, which FreeReadAll releases.
    virtual int ReadAll(char** data, unsigned int* size) = 0;
    virtual void FreeReadAll(char* data) { delete[] data; }
    virtual int ReadAll(zBuffer* buffer) = 0;
    /// Up to `size` bytes; `read`, which may be null, gets how many.
    virtual int Read(char* data, unsigned int size, unsigned int* read) = 0;
    /// Hands all bytes from the present position on to the receiver, block by block.
    virtual int FastRead(void* context, Receiver receiver);
    /// `written`, which may be null, gets how many bytes were taken.
    virtual int Write(const char* data, unsigned int size = kWholeText, unsigned int* written = nullptr) = 0;
    virtual int Seek(int, unsigned char) { return -1; }
    virtual unsigned int Position() const { return 0; }
    virtual int StreamSize(unsigned int* size);
    virtual int Flush() { return 0; }

    /// 1 at the first difference between the rest of both streams, 0 when they end alike.
    int FindDifference(zStream* other);
    /// Copies the rest of `from`, `chunk` bytes at a time; -1 for a chunk of 0, without memory, or when not
    /// all could be written.
    static int BulkWriteAll(zStream& to, zStream& from, unsigned int chunk);
    /// Makes `to`, which must be able to truncate (else -1), an exact copy of the whole of `from`,
    /// whose position stays.
    static int ExactCopy(zStream& to, zStream& from, unsigned int chunk);

  protected:
    static constexpr unsigned int kDefaultBufferSize = 512;

    /// The number of bytes that a Write was given.
    static unsigned int write_size(const char* data, unsigned int size);
    /// The rule by which all memory streams seek. False for an unknown origin.
    static bool seek_in_memory(int offset, unsigned char origin, unsigned int size, unsigned int& position);

    unsigned char fAbility;
};
