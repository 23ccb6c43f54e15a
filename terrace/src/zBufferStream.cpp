#include "zBufferStream.h"

#include <algorithm>
#include <climits>
#include <cstdint>

#include "zBuffer.h"
#include "zResult.h"

zBufferStream::zBufferStream(zBuffer& buffer, unsigned int step)
    : zStream(kRead | kWrite | kSeek | kTruncate),
      fBuffer(buffer),
      fSize(buffer.Size()),
      fStep(step ? step : kDefaultStep) {}

int zBufferStream::ResizeBufferToFit() {
    return fBuffer.ResizeTo(fSize, zBuffer::kKeepContents | zBuffer::kKeepLargerBlock);
}

int zBufferStream::EnsureBufferSize(unsigned int size) {
    if (size <= fBuffer.Size())
        return result::kOk;
    const uint64_t step = fStep;
    const uint64_t growth = (size - fBuffer.Size() + step - 1) / step * step;
    const uint64_t grown = fBuffer.Size() + growth;
    if (grown > UINT_MAX)
        return result::kFailure;
    return fBuffer.ResizeTo(static_cast<unsigned int>(grown), zBuffer::kKeepContents);
}

int zBufferStream::Truncate() {
    fSize = std::min(fSize, fPosition);
    return result::kOk;
}

int zBufferStream::ReadAll(char** data, unsigned int* size) {
    *data = new char[fSize];
    std::copy_n(fBuffer.Data(), fSize, *data);
    *size = fPosition = fSize;
    return result::kOk;
}

int zBufferStream::ReadAll(zBuffer* buffer) {
    fPosition = fSize;
    return buffer->SetAndCopyData(fBuffer.Data(), fSize, 0);
}

int zBufferStream::Read(char* data, unsigned int size, unsigned int* read) {
    const bool atEnd = fPosition >= fSize;
    const unsigned int count = atEnd ? 0 : std::min(size, fSize - fPosition);
    std::copy_n(fBuffer.Data() + fPosition, count, data);
    fPosition += count;
    if (read)
        *read = count;
    return atEnd ? result::kEndOfStream : result::kOk;
}

int zBufferStream::Write(const char* data, unsigned int size, unsigned int* written) {
    const unsigned int count = write_size(data, size);
    if (written)
        *written = 0;
    if (count == 0)
        return result::kOk;
    if (count > UINT_MAX - fPosition || EnsureBufferSize(fPosition + count) != result::kOk)
        return result::kFailure;
    std::copy_n(data, count, fBuffer.Data() + fPosition);
    fPosition += count;
    fSize = std::max(fSize, fPosition);
    if (written)
        *written = count;
    return result::kOk;
}

int zBufferStream::Seek(int offset, unsigned char origin) {
    return seek_in_memory(offset, origin, fSize, fPosition) ? result::kOk : result::kFailure;
}

int zBufferStream::StreamSize(unsigned int* size) {
    *size = fSize;
    return result::kOk;
}
