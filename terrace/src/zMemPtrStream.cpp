#include "zMemPtrStream.h"

#include <algorithm>

#include "zBuffer.h"
#include "zResult.h"

int zMemPtrStream::ReadAll(char** data, unsigned int* size) {
    *data = new char[fSize];
    std::copy_n(fData, fSize, *data);
    *size = fPosition = fSize;
    return result::kOk;
}

int zMemPtrStream::ReadAll(zBuffer* buffer) {
    buffer->SetData(fData, fSize, false);
    fPosition = fSize;
    return result::kOk;
}

int zMemPtrStream::Read(char* data, unsigned int size, unsigned int* read) {
    const unsigned int count = std::min(size, fSize - fPosition);
    const bool atEnd = fPosition >= fSize;
    std::copy_n(fData + fPosition, count, data);
    fPosition += count;
    if (read)
        *read = count;
    return atEnd ? result::kEndOfStream : result::kOk;
}

int zMemPtrStream::Write(const char* data, unsigned int size, unsigned int* written) {
    const unsigned int count = std::min(write_size(data, size), fSize - fPosition);
    std::copy_n(data, count, fData + fPosition);
    fPosition += count;
    if (written)
        *written = count;
    return result::kOk;
}

int zMemPtrStream::Seek(int offset, unsigned char origin) {
    return seek_in_memory(offset, origin, fSize, fPosition) ? result::kOk : result::kFailure;
}
