#pragma once

#include "zStream.h"

/// A stream over a block of the caller's memory, whose size never changes.
class zMemPtrStream : public zStream {
  public:
    zMemPtrStream(char* data, unsigned int size)
        : zStream(kRead | kWrite | kSeek), fData(data), fSize(size) {}

    using zStream::operator=;
    zMemPtrStream& operator=(zMemPtrStream& other) {
        zStream::operator=(other);
        return *this;
    }

    unsigned int OptimalBufferSize() const override { return fSize < kMaxBlock ? fSize : kMaxBlock; }
    int ReadAll(char** data, unsigned int* size) override;
    /// Points the buffer at the memory, without a copy and without ownership.
    int ReadAll(zBuffer* buffer) override;
    int Read(char* data, unsigned int size, unsigned int* read) override;
    /// Cut short at the end of the memory, with result 0: `written` tells.
    int Write(const char* data, unsigned int size = kWholeText, unsigned int* written = nullptr) override;
    int Seek(int offset, unsigned char origin) override;
    unsigned int Position() const override { return fPosition; }

  private:
    static constexpr unsigned int kMaxBlock = 64 * 1024;

    char* fData;
    unsigned int fSize;
    unsigned int fPosition = 0;
};
