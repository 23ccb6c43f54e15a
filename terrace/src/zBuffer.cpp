#include "zBuffer.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

#include "zResult.h"

namespace {

// A block that would become so much smaller is worth giving back.
constexpr unsigned int kShrinkLimit = 64;

bool is_aligned(const char* data) {
    return reinterpret_cast<uintptr_t>(data) % zBuffer::kAlignment == 0;
}

char* align_up(char* data) {
    const auto beyond = reinterpret_cast<uintptr_t>(data) % zBuffer::kAlignment;
    return beyond ? data + (zBuffer::kAlignment - beyond) : data;
}

} // namespace

zBuffer::zBuffer(unsigned int size, unsigned int flags) {
    ResizeTo(size, flags);
}

zBuffer::zBuffer(void* data, unsigned int size, bool own) {
    SetData(data, size, own);
}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): copying three members onto themselves is harmless.
zBuffer& zBuffer::operator=(const zBuffer& other) {
    fRaw = other.fRaw;
    fData = other.fData;
    fSize = other.fSize;
    return *this;
}

void zBuffer::CopyAndOwn(zBuffer& other) {
    // Where both hold the same memory already, it stays with whichever of them owned it.
    if (fData != other.fData)
        MakeEmpty();
    char* const owned = other.fRaw ? other.fRaw : fRaw;
    *this = other;
    other.fRaw = nullptr;
    fRaw = owned;
}

void zBuffer::MakeEmpty() {
    delete[] fRaw;
    fRaw = fData = nullptr;
    fSize = 0;
}

void zBuffer::SetData(void* data, unsigned int size, bool own) {
    MakeEmpty();
    fData = static_cast<char*>(data);
    fRaw = own ? fData : nullptr;
    fSize = size;
}

int zBuffer::SetAndCopyData(const void* data, unsigned int size, unsigned int flags) {
    const int error = ResizeTo(size, flags & ~kKeepContents);
    if (error == result::kOk && size > 0)
        std::memcpy(fData, data, size);
    return error;
}

int zBuffer::ResizeTo(unsigned int size, unsigned int flags) {
    if (size == 0) {
        MakeEmpty();
        return result::kOk;
    }
    const bool aligned = !(flags & kAlign) || is_aligned(fData);
    if (size <= fSize && aligned && (fSize - size < kShrinkLimit || flags & kKeepLargerBlock)) {
        fSize = size;
        return result::kOk;
    }

    const size_t blockSize = size_t{size} + (flags & kAlign ? kAlignment : 0);
    std::unique_ptr<char[]> block(new (std::nothrow) char[blockSize]);
    if (!block)
        return result::kFailure;
    char* data = flags & kAlign ? align_up(block.get()) : block.get();
    if (flags & kKeepContents && fSize > 0)
        std::memcpy(data, fData, std::min(size, fSize));
    MakeEmpty();
    fRaw = block.release();
    fData = data;
    fSize = size;
    return result::kOk;
}

unsigned short zBuffer::Checksum() const {
    const unsigned int used = fSize & 0xFFFE;
    unsigned int sum = 0;
    for (unsigned int i = 0; i < used; i += 2)
        sum ^= static_cast<unsigned char>(fData[i]) |
               static_cast<unsigned int>(static_cast<unsigned char>(fData[i + 1])) << 8;
    return static_cast<unsigned short>(sum);
}
