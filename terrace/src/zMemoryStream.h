#pragma once

#include <vector>

#include "zStream.h"

/// A stream over memory of its own in chunks of one size, which are never moved: for lengths
/// nobody knows beforehand.
class zMemoryStream : public zStream {
  public:
    /// A chunk size of 0 means 4096.
    explicit zMemoryStream(unsigned int chunkSize = 0);
    ~zMemoryStream() override { Close(); }

    using zStream::operator=;
    zMemoryStream& operator=(zMemoryStream& other) {
        zStream::operator=(other);
        return *this;
    }

    /// Reads from the caller's memory from now on. The stream can neither write nor truncate then.
    void SetReadOnlyBuffer(char* data, unsigned int size);

    unsigned int OptimalBufferSize() const override { return fChunkSize; }
    /// Frees the chunks. Deliberate: size and position stay, as after the closing of a file.
    int Close() override;
    int Truncate() override;
    int ReadAll(char** data, unsigned int* size) override;
    int ReadAll(zBuffer* buffer) override;
    int Read(char* data, unsigned int size, unsigned int* read) override;
    int Write(const char* data, unsigned int size = kWholeText, unsigned int* written = nullptr) override;
    int Seek(int offset, unsigned char origin) override;
    unsigned int Position() const override { return fPosition; }
    int StreamSize(unsigned int* size) override;

  private:
    /// Bytes that can be read: a closed stream keeps its size but has none.
    unsigned int stored_size() const;

    unsigned int fChunkSize;
    std::vector<char*> fChunks;
    bool fOwnsChunks = true;
    unsigned int fSize = 0;
    unsigned int fPosition = 0;
};
