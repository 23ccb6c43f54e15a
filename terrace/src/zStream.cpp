#include "zStream.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

#include "zResult.h"

zStream& zStream::operator=(zStream& other) {
    if (&other == this)
        return *this;
    Seek(0, kFromStart);
    other.Seek(0, kFromStart);
    BulkWriteAll(*this, other, kDefaultBufferSize);
    return *this;
}

int zStream::FastRead(void* context, Receiver receiver) {
    const unsigned int size = std::max(OptimalBufferSize(), 1U);
    const std::unique_ptr<char[]> block(new char[size]);
    for (;;) {
        unsigned int count = 0;
        const int status = Read(block.get(), size, &count);
        const bool last = status == result::kEndOfStream;
        if (status != result::kOk && !last)
            return status;
        const int answer = receiver(context, block.get(), count, last);
        if (answer != 0 || last)
            return answer;
    }
}

int zStream::StreamSize(unsigned int* size) {
    const unsigned int position = Position();
    if (Seek(0, kFromEnd) != result::kOk)
        return result::kFailure;
    *size = Position();
    return Seek(static_cast<int>(position), kFromStart);
}

int zStream::FindDifference(zStream* other) {
    for (;;) {
        char here = 0, there = 0;
        unsigned int countHere = 0, countThere = 0;
        const int status = Read(&here, 1, &countHere);
        const int otherStatus = other->Read(&there, 1, &countThere);
        if (status != otherStatus || countHere != countThere || here != there)
            return 1;
        if (status != result::kOk)
            return 0;
    }
}

int zStream::BulkWriteAll(zStream& to, zStream& from, unsigned int chunk) {
    const std::unique_ptr<char[]> block(chunk ? new (std::nothrow) char[chunk] : nullptr);
    if (!block)
        return result::kFailure;
    int status = result::kOk;
    while (status == result::kOk) {
        unsigned int count = 0;
        unsigned int written = 0;
        status = from.Read(block.get(), chunk, &count);
        if (count > 0 && (to.Write(block.get(), count, &written) != result::kOk || written < count))
            return result::kFailure;
    }
    return status == result::kEndOfStream ? result::kOk : status;
}

int zStream::ExactCopy(zStream& to, zStream& from, unsigned int chunk) {
    if (!to.Can(kTruncate))
        return result::kFailure;
    const unsigned int position = from.Position();
    from.Seek(0, kFromStart);
    to.Seek(0, kFromStart);
    int error = BulkWriteAll(to, from, chunk);
    if (error == result::kOk)
        error = to.Truncate();
    from.Seek(static_cast<int>(position), kFromStart);
    return error;
}

unsigned int zStream::write_size(const char* data, unsigned int size) {
    return size == kWholeText ? static_cast<unsigned int>(std::strlen(data)) : size;
}

bool zStream::seek_in_memory(int offset, unsigned char origin, unsigned int size, unsigned int& position) {
    // A negative offset from either end is as one beyond the other end.
    const auto distance = static_cast<unsigned int>(offset);
    const int64_t moved = int64_t{position} + offset;
    switch (origin) {
    case kFromStart:
        position = std::min(distance, size);
        return true;
    case kFromEnd:
        position = distance < size ? size - distance : 0;
        return true;
    case kFromCurrent:
        // Deliberate: a step that would land on either end, or beyond it, is not made.
        if (moved > 0 && moved < size)
            position = static_cast<unsigned int>(moved);
        return true;
    default:
        return false;
    }
}
