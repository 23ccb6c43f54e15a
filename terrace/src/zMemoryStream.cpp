#include "zMemoryStream.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <memory>

#include "zBuffer.h"
#include "zResult.h"

namespace {
constexpr unsigned int kDefaultChunkSize = 4096;
}

zMemoryStream::zMemoryStream(unsigned int chunkSize)
    : zStream(kRead | kWrite | kSeek | kTruncate), fChunkSize(chunkSize ? chunkSize : kDefaultChunkSize) {}

void zMemoryStream::SetReadOnlyBuffer(char* data, unsigned int size) {
    Close();
    fChunks.assign(1, data);
    fOwnsChunks = false;
    fChunkSize = std::max(size, 1U);
    fSize = size;
    fPosition = 0;
    fAbility = kRead | kSeek;
}

int zMemoryStream::Close() {
    if (fOwnsChunks)
        for (char* chunk : fChunks)
            delete[] chunk;
    fChunks.clear();
    return result::kOk;
}

int zMemoryStream::Truncate() {
    if (!Can(kTruncate))
        return result::kFailure;
    fSize = std::min(fSize, fPosition);
    return result::kOk;
}

int zMemoryStream::ReadAll(char** data, unsigned int* size) {
    std::unique_ptr<char[]> block(new char[fSize]);
    fPosition = 0;
    Read(block.get(), fSize, size);
    fPosition = fSize;
    *data = block.release();
    return result::kOk;
}

int zMemoryStream::ReadAll(zBuffer* buffer) {
    const unsigned int size = stored_size();
    if (buffer->ResizeTo(size, 0) != result::kOk)
        return result::kFailure;
    fPosition = 0;
    Read(buffer->Data(), size, nullptr);
    fPosition = fSize;
    return result::kOk;
}

int zMemoryStream::Read(char* data, unsigned int size, unsigned int* read) {
    const unsigned int end = stored_size();
    const unsigned int count = fPosition < end ? std::min(size, end - fPosition) : 0;
    const bool atEnd = fPosition >= end;
    for (unsigned int done = 0; done < count;) {
        const unsigned int offset = fPosition % fChunkSize;
        const unsigned int part = std::min(count - done, fChunkSize - offset);
        std::memcpy(data + done, fChunks[fPosition / fChunkSize] + offset, part);
        done += part;
        fPosition += part;
    }
    if (read)
        *read = count;
    return atEnd ? result::kEndOfStream : result::kOk;
}

int zMemoryStream::Write(const char* data, unsigned int size, unsigned int* written) {
    if (written)
        *written = 0;
    const unsigned int count = write_size(data, size);
    if (!Can(kWrite) || count > UINT_MAX - fPosition)
        return result::kFailure;
    while (fChunks.size() * size_t{fChunkSize} < size_t{fPosition} + count)
        fChunks.push_back(new char[fChunkSize]());
    for (unsigned int done = 0; done < count;) {
        const unsigned int offset = fPosition % fChunkSize;
        const unsigned int part = std::min(count - done, fChunkSize - offset);
        std::memcpy(fChunks[fPosition / fChunkSize] + offset, data + done, part);
        done += part;
        fPosition += part;
    }
    fSize = std::max(fSize, fPosition);
    if (written)
        *written = count;
    return result::kOk;
}

int zMemoryStream::Seek(int offset, unsigned char origin) {
    return seek_in_memory(offset, origin, fSize, fPosition) ? result::kOk : result::kFailure;
}

unsigned int zMemoryStream::stored_size() const {
    return static_cast<unsigned int>(std::min<size_t>(fSize, fChunks.size() * size_t{fChunkSize}));
}

int zMemoryStream::StreamSize(unsigned int* size) {
    *size = fSize;
    return result::kOk;
}
