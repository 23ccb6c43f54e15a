#include "vnCircularBuffer.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

unsigned RaiseToUpperPowerOfTwo(unsigned value) {
    --value;
    for (const int shift : {1, 2, 4, 8, 16})
        value |= value >> shift;
    return value + 1;
}

void vnCircularBuffer::Freer::operator()(uint8_t* storage) const {
    std::free(storage);
}

// The pages of storage that comes zeroed from the system take no memory before they are written to.
vnCircularBuffer::vnCircularBuffer(unsigned size)
    : fCapacity(RaiseToUpperPowerOfTwo(size)), fStorage(static_cast<uint8_t*>(std::calloc(fCapacity, 1))) {}

vnCircularBuffer::~vnCircularBuffer() = default;

void vnCircularBuffer::WriteData(const void* data, unsigned size) {
    if (!data || size == 0 || size > fCapacity || !fStorage)
        return;
    if (!fAllowOverwriting && fBytesWritten + size - fBytesRead >= fCapacity)
        return;
    const unsigned start = position(fBytesWritten);
    const unsigned first = std::min(size, fCapacity - start);
    std::memcpy(fStorage.get() + start, data, first);
    std::memcpy(fStorage.get(), static_cast<const uint8_t*>(data) + first, size - first);
    fBytesWritten += size;
}

void vnCircularBuffer::ReadData(void* data, unsigned size) {
    if (!data || size == 0 || !fStorage)
        return;
    if (size > fCapacity || fBytesRead + size > fBytesWritten) {
        std::memset(data, 0, size);
        return;
    }
    const unsigned start = position(fBytesRead);
    const unsigned first = std::min(size, fCapacity - start);
    std::memcpy(data, fStorage.get() + start, first);
    std::memcpy(static_cast<uint8_t*>(data) + first, fStorage.get(), size - first);
    fBytesRead += size;
}

void vnCircularBuffer::Clear() {
    if (!fStorage)
        return;
    std::memset(fStorage.get(), 0, fCapacity);
    fBytesRead = 0;
    fBytesWritten = 0;
}

unsigned vnCircularBuffer::TotalNumberOfBytesAvailable() const {
    if (fBytesRead == fBytesWritten)
        return 0;
    const unsigned reader = position(fBytesRead);
    const unsigned writer = position(fBytesWritten);
    return writer > reader ? writer - reader : fCapacity - reader + writer;
}
