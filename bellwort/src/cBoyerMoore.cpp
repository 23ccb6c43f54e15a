#include "cBoyerMoore.h"

#include <cstring>

namespace {

size_t table_index(char byte) {
    return static_cast<unsigned char>(byte);
}

} // namespace

cBoyerMoore::cBoyerMoore(const char* pattern, int length) : fPattern(pattern), fLength(length) {
    if (length < 1 || length > kMaxPattern)
        fPattern = nullptr;
    if (fPattern == nullptr)
        return;
    fSkip.fill(length);
    for (int i = 0; i < length - 1; ++i)
        fSkip[table_index(pattern[i])] = length - 1 - i;
}

int cBoyerMoore::FindIn(const char* text, int size) const {
    if (text == nullptr || fPattern == nullptr || fLength > size)
        return -1;
    const int last = fLength - 1;
    for (long end = last; end < size; end += fSkip[table_index(text[end])])
        if (memcmp(text + end - last, fPattern, static_cast<size_t>(fLength)) == 0)
            return static_cast<int>(end - last);
    return -1;
}
