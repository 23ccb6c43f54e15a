#pragma once

#include "zStream.h"

/// A stream over the caller's zBuffer, which grows in steps: one contiguous block at the end. The buffer may
/// be larger than what was written until ResizeBufferToFit trims it.
class zBufferStream : public zStream {
  public:
    static constexpr unsigned int kDefaultStep = 4096;

    /// What the buffer holds is the stream's first content. A step of 0 means kDefaultStep.
    explicit zBufferStream(zBuffer& buffer, unsigned int step = 0);

    int ResizeBufferToFit();
    /// 0, or -1 when there is no memory or the size would pass 32 bits.
    int EnsureBufferSize(unsigned int size);

    unsigned int OptimalBufferSize() const override { return fStep; }
    int Close() override { return 0; }
    int Truncate() override;
    int ReadAll(char** data, unsigned int* size) override;
    int ReadAll(zBuffer* buffer) override;
    int Read(char* data, unsigned int size, unsigned int* read) override;
    int Write(const char* data, unsigned int size = kWholeText, unsigned int* written = nullptr) override;
    int Seek(int offset, unsigned char origin) override;
    unsigned int Position() const override { return fPosition; }
    int StreamSize(unsigned int* size) override;

  private:
    zBuffer& fBuffer;
    unsigned int fSize;
    unsigned int fPosition = 0;
    unsigned int fStep;
};
